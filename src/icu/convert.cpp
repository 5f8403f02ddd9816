#include "icu/convert.hpp"

#include "core/data_file.hpp"
#include "icu/binding.hpp"
#include "icu/utf8_converter.hpp"

#include <algorithm>
#include <cstring>

namespace velnls::icu {

namespace {

constexpr std::int32_t kUtf8Source = 0x180; // bits of the kind word: the Unicode side is UTF-8
constexpr std::int32_t kUtf8Target = 0x600;

constexpr std::int64_t kUnitSize = sizeof(Unit);

bool isOdd(const void *address) {
    return reinterpret_cast<std::uintptr_t>(address) % 2 != 0;
}

bool failed(ErrorCode error) {
    return error > kNoError;
}

void swapBytes(Unit *units, std::int64_t count) {
    for (std::int64_t i = 0; i < count; ++i)
        units[i] = static_cast<Unit>(units[i] << 8 | units[i] >> 8);
}

// A source of bytes as ICU takes it: by its NUL where it has one in its bounds or right behind them, else by
// its length.
struct Bytes {
    const char *text;
    std::int32_t length;
};
Bytes bytesOf(const Source &source) {
    if (source.at == nullptr)
        return {"", kToTerminator};
    const auto *const text = reinterpret_cast<const char *>(source.at);
    const auto length = static_cast<std::size_t>(source.left());
    const bool terminated =
        std::memchr(text, 0, length) != nullptr || (source.behind > 0 && *source.end == 0);
    return {text, terminated ? kToTerminator : static_cast<std::int32_t>(length)};
}

// ---- The UTF-16 side in the caller's own buffers ----

nlsStatus toUtf16(Converter *converter, bool swapped, const Source &source, Target &target) {
    const std::int64_t shift = isOdd(target.at) ? 1 : 0;
    auto *const units = reinterpret_cast<Unit *>(target.at + shift);
    const auto capacity =
        static_cast<std::int32_t>(std::max<std::int64_t>(target.room() - shift, 0) / kUnitSize);
    const Bytes bytes = bytesOf(source);
    ErrorCode error = kNoError;
    const std::int32_t count =
        functions().converters.toUChars(converter, units, capacity, bytes.text, bytes.length, &error);
    if (failed(error) || count < 0 || count > capacity)
        return NLS_E_NULLARG;
    if (swapped)
        swapBytes(units, count);
    if (shift != 0) // with the terminator, where there was room for one
        std::memmove(target.at, units,
                     static_cast<std::size_t>((count + (count < capacity ? 1 : 0)) * kUnitSize));
    target.at += count * kUnitSize;
    return NLS_OK;
}

// A UTF-16 source as ICU takes it: at an even address, in the machine's byte order. The caller's text is as
// it was when the scope ends.
class NativeUnits {
public:
    NativeUnits(const Source &source, bool swapped) : at_(const_cast<std::uint8_t *>(source.at)) {
        const std::int64_t most = source.left() / kUnitSize;
        while (count_ < most && (at_[count_ * kUnitSize] != 0 || at_[count_ * kUnitSize + 1] != 0))
            ++count_;
        terminated_ = count_ < most;
        if (isOdd(at_)) {
            shift_ = 1;
            moved_ = static_cast<std::size_t>((count_ + (terminated_ ? 1 : 0)) * kUnitSize);
            behind_ = moved_ != 0 ? at_[moved_] : std::uint8_t{0};
            std::memmove(at_ + shift_, at_, moved_);
        }
        if (swapped)
            swapped_ = count_;
        swapBytes(units(), swapped_);
    }
    ~NativeUnits() {
        swapBytes(units(), swapped_);
        if (shift_ == 0 || moved_ == 0)
            return;
        std::memmove(at_, at_ + shift_, moved_);
        at_[moved_] = behind_;
    }
    NativeUnits(const NativeUnits &) = delete;
    NativeUnits &operator=(const NativeUnits &) = delete;

    [[nodiscard]] Unit *units() const {
        return reinterpret_cast<Unit *>(at_ + shift_);
    }
    [[nodiscard]] std::int32_t length() const {
        return terminated_ ? kToTerminator : static_cast<std::int32_t>(count_);
    }

private:
    std::uint8_t *at_;
    std::int64_t count_ = 0;
    std::int64_t swapped_ = 0;
    std::size_t moved_ = 0; // bytes moved up by one
    std::uint8_t behind_ = 0;
    int shift_ = 0;
    bool terminated_ = false;
};

// What ICU made of units: how many bytes, or how many it would have taken.
struct Made {
    std::int64_t bytes;
    ErrorCode error;
};

// From UTF-16 to the character set, into the first `capacity` bytes of the target.
Made fromUnits(Converter *converter, const Unit *units, std::int64_t length, std::int64_t capacity,
               const Target &target) {
    ErrorCode error = kNoError;
    const std::int32_t bytes = functions().converters.fromUChars(
        converter, reinterpret_cast<char *>(target.at), static_cast<std::int32_t>(capacity), units,
        static_cast<std::int32_t>(length), &error);
    return {bytes, error};
}

// Takes what was made into the target's whole room.
nlsStatus take(const Made &made, Target &target) {
    if (failed(made.error) || made.bytes < 0 || made.bytes > target.room())
        return NLS_E_NULLARG;
    target.at += made.bytes;
    return NLS_OK;
}

nlsStatus fromUtf16(Converter *converter, bool swapped, const Source &source, Target &target) {
    const NativeUnits units(source, swapped);
    return take(fromUnits(converter, units.units(), units.length(), target.room(), target), target);
}

// ---- UTF-8, by way of UTF-16 ----

bool isHighSurrogate(Unit unit) {
    return (unit & 0xFC00) == 0xD800;
}

// Whether text at `units`, on its way to UTF-8 at `target`, is never overwritten before it has been read.
// Counts the bytes that it becomes.
bool isReadBeforeWritten(const Unit *units, std::int32_t count, const std::uint8_t *target,
                         std::int64_t &bytes) {
    const std::int64_t ahead = reinterpret_cast<const std::uint8_t *>(units) - target;
    bool safe = true;
    bytes = 0;
    for (std::int32_t i = 0; i < count; ++i) {
        const Unit unit = units[i];
        const bool pair = isHighSurrogate(unit) && i + 1 < count && (units[i + 1] & 0xFC00) == 0xDC00;
        bytes += unit < 0x80 ? 1 : unit < 0x800 ? 2 : pair ? 4 : 3;
        i += pair ? 1 : 0;
        safe = safe && bytes <= ahead + (i + 1) * kUnitSize;
    }
    return safe;
}

// The same on the way to a page of ICU's, which alone knows what a unit becomes: it is asked about stretches
// whose output would end before their own first unit, as long as there are such, and about single characters.
// A page that writes more for a stretch by itself than within a text may be refused for it.
bool isReadBeforeWritten(Converter *converter, const Unit *units, std::int64_t count, const Target &target) {
    std::int64_t ahead = reinterpret_cast<const std::uint8_t *>(units) - target.at;
    std::int64_t length = 1;
    while (count > 0) {
        length = std::min(length, count);
        if (length < count && isHighSurrogate(units[length - 1]))
            ++length;
        const Made made = fromUnits(converter, units, length, 0, target);
        const std::int64_t first = length > 1 && isHighSurrogate(units[0]) ? 2 : 1; // units of a character
        if (made.bytes > ahead + first * kUnitSize) {
            if (length == first)
                return false;
            length = std::max<std::int64_t>(length / 4, 1);
            continue;
        }
        ahead += length * kUnitSize - made.bytes;
        units += length;
        count -= length;
        length *= 2;
    }
    return true;
}

// The UTF-16 form between the two steps. The target must have room for it behind a first byte, whatever the
// text; what is short stays on the stack all the same, where output cannot run over it.
class Pivot {
public:
    static constexpr std::int64_t kShort = 2000; // units, terminator included

    // Room for `length` units and a terminator.
    Pivot(const Target &target, std::int64_t length) : capacity_(length + 1), end_(target.end) {
        fits_ = target.room() - capacity_ * kUnitSize >= 1;
        if (!fits_)
            return;
        if (capacity_ <= kShort) {
            units_ = own_;
            return;
        }
        // The byte kept free in front is where an odd address is rounded down to.
        std::uint8_t *const start = target.end - capacity_ * kUnitSize;
        units_ = reinterpret_cast<Unit *>(isOdd(start) ? start - 1 : start);
    }
    [[nodiscard]] bool fits() const {
        return fits_;
    }
    [[nodiscard]] bool onStack() const {
        return units_ == own_;
    }
    [[nodiscard]] const Unit *units() const {
        return units_;
    }
    [[nodiscard]] std::int32_t count() const {
        return count_;
    }
    [[nodiscard]] std::int32_t length() const {
        return terminated_ ? kToTerminator : count_;
    }

    bool fill(Converter *converter, const Source &source) {
        const Bytes bytes = bytesOf(source);
        ErrorCode error = kNoError;
        count_ = functions().converters.toUChars(converter, units_, static_cast<std::int32_t>(capacity_),
                                                 bytes.text, bytes.length, &error);
        terminated_ = count_ < capacity_ && error != kNotTerminated;
        return !failed(error) && count_ >= 0 && count_ <= capacity_;
    }

    // Moves the units as far back in the target as they go, so that output has room in front of them.
    void moveToEnd() {
        const std::int64_t size = (count_ + (terminated_ ? 1 : 0)) * kUnitSize;
        std::uint8_t *start = end_ - size;
        start -= isOdd(start) ? 1 : 0;
        std::memmove(start, units_, static_cast<std::size_t>(size));
        units_ = reinterpret_cast<Unit *>(start);
    }

private:
    std::int64_t capacity_;
    std::uint8_t *end_;
    Unit *units_ = nullptr;
    std::int32_t count_ = 0;
    bool fits_ = false;
    bool terminated_ = false;
    Unit own_[kShort];
};

nlsStatus toUtf8(Converter *converter, const Source &source, Target &target) {
    Pivot pivot(target, source.left());
    if (!pivot.fits())
        return NLS_E_BUFFER;
    const Utf8Converter utf8;
    if (utf8.get() == nullptr)
        return NLS_E_ICU;
    if (!pivot.fill(converter, source))
        return NLS_E_NULLARG;
    if (!pivot.onStack()) {
        pivot.moveToEnd();
        std::int64_t bytes = 0;
        if (!isReadBeforeWritten(pivot.units(), pivot.count(), target.at, bytes))
            return bytes > target.room() ? NLS_E_NULLARG : NLS_E_BUFFER;
    }
    return take(fromUnits(utf8.get(), pivot.units(), pivot.length(), target.room(), target), target);
}

nlsStatus fromUtf8(Converter *converter, const Source &source, Target &target) {
    if (source.left() > 0 && (*source.at & 0xC0) == 0x80)
        return NLS_E_NULLARG;
    Pivot pivot(target, source.left());
    if (!pivot.fits())
        return NLS_E_BUFFER;
    const Utf8Converter utf8;
    if (utf8.get() == nullptr)
        return NLS_E_ICU;
    if (!pivot.fill(utf8.get(), source))
        return NLS_E_NULLARG;
    if (!pivot.onStack()) {
        pivot.moveToEnd();
        // Most output leaves the units alone; where it does not, they have to be read before.
        const std::int64_t free = reinterpret_cast<const std::uint8_t *>(pivot.units()) - target.at;
        const Made made = fromUnits(converter, pivot.units(), pivot.length(), free, target);
        if (made.error != kBufferOverflow || made.bytes > target.room())
            return take(made, target);
        if (!isReadBeforeWritten(converter, pivot.units(), pivot.count(), target))
            return NLS_E_BUFFER;
    }
    return take(fromUnits(converter, pivot.units(), pivot.length(), target.room(), target), target);
}

} // namespace

nlsStatus openConverter(const char *name, Converter *&out) {
    if (bind(kConversion) != NLS_OK)
        return NLS_E_ICU;
    ErrorCode error = kNoError;
    out = functions().converters.open(name, &error);
    return failed(error) || out == nullptr ? NLS_E_ICU : NLS_OK;
}

void closeConverter(Converter *converter) {
    functions().converters.close(converter);
}

void closeConvertersOf(const nlsHandle &handle) {
    if (level() < kConversion) // none was ever opened
        return;
    for (const Entry &entry : directoryOf(handle)) {
        if (entry.kind == file::kConversion && entry.table != nullptr &&
            isIcuType(headerOf(entry.table).type))
            closeConverter(static_cast<const ConverterBody *>(entry.table)->converter);
    }
}

nlsStatus convert(const void *converter, Source source, Target &target) {
    const std::int32_t word = kindWord(converter);
    Converter *const icu = static_cast<const ConverterBody *>(converter)->converter;
    const bool utf8 = (word & kUtf8Source) == kUtf8Source || (word & kUtf8Target) == kUtf8Target;
    if (kindOf(converter) == kIcuToUnicode)
        return utf8 ? toUtf8(icu, source, target) : toUtf16(icu, (word & kSwapTarget) != 0, source, target);
    return utf8 ? fromUtf8(icu, source, target) : fromUtf16(icu, (word & kSwapSource) != 0, source, target);
}

} // namespace velnls::icu
