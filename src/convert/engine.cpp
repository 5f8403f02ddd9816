#include "convert/engine.hpp"

#include "convert/kernels/fast.hpp"
#include "convert/kernels/kernels.hpp"
#include "convert/kernels/unicode_units.hpp"
#include "icu/convert.hpp"

#include <algorithm>
#include <cstring>

namespace velnls {

namespace {

// A capacity beyond the signed range leaves no room, as its signed comparison says.
std::int32_t signedCapacity(std::uint32_t capacity) {
    return std::max(static_cast<std::int32_t>(capacity), 0);
}

// Fills what fits and reports the rest; never reports a change.
nlsStatus copyIdentity(const Request &request) {
    const std::int32_t capacity = signedCapacity(request.capacity);
    const std::int32_t length = std::max(request.sourceLength, 0);
    const std::int32_t copied = std::min(capacity, length);
    if (copied > 0)
        std::memmove(request.destination, request.source, static_cast<std::size_t>(copied));
    *request.written = static_cast<std::uint32_t>(copied);
    return copied < length ? NLS_E_BUFFER : NLS_OK;
}

// All or nothing, unlike the plain copy.
nlsStatus convertByteMap(const Request &request, Source &source, Target &target) {
    if (target.room() < source.left()) {
        *request.written = 0;
        return NLS_E_BUFFER;
    }
    const std::uint8_t *const map = byteMapOf(request.converter);
    std::uint8_t changed = 0;
    if (map != nullptr && !request.check) {
        if (areApart(source, target))
            fast::mapBytes(map, headerOf(request.converter).proofs, source, target);
        else
            mapBytes(map, source, target);
    } else {
        while (source.at < source.end) {
            const std::uint8_t byte = *source.at++;
            const std::uint8_t mapped = map == nullptr ? byte : map[byte];
            changed |= byte ^ mapped;
            *target.at++ = mapped;
        }
    }
    return changed != 0 ? NLS_R_CHANGED : NLS_OK;
}

nlsStatus convertChain(const Request &request) {
    if (request.intermediate == nullptr || request.intermediateCapacity == 0)
        return NLS_E_NULLARG;
    const auto &chain = *static_cast<const ChainBody *>(request.converter);
    Request step = request;
    step.converter = chain.first;
    step.destination = request.intermediate;
    step.capacity = request.intermediateCapacity;
    step.intermediate = nullptr;
    step.intermediateCapacity = 0;
    step.check = false;
    const nlsStatus first = convert(step);
    if (first != NLS_OK && first != NLS_R_SUBSTITUTED)
        return first; // with the count of the intermediate text
    step.converter = chain.second;
    step.destination = request.destination;
    step.capacity = request.capacity;
    step.source = request.intermediate;
    step.sourceLength = static_cast<std::int32_t>(*request.written);
    step.behind = 0; // no terminator stands there
    return convert(step);
}

// A set of kinds below 64, for tests that every call makes.
template <typename... Kinds>
constexpr std::uint64_t setOf(Kinds... kinds) {
    return (... | (std::uint64_t{1} << kinds));
}
bool isIn(std::uint64_t set, std::int32_t kind) {
    return kind < 64 && (set >> kind & 1) != 0;
}

constexpr std::uint64_t kReadsUtf8 =
    setOf(kUtf8ToPage, kUtf8ToByte, kUtf8ToUcs2, kUtf8ToUtf16, kUtf8ToUtf32, kUtf8ToBytePage);
constexpr std::uint64_t kWritesUtf16 = setOf(kUtf8ToUcs2, kUtf8ToUtf16, kUtf32ToUtf16);
constexpr std::uint64_t kWritesUtf32 = setOf(kUtf8ToUtf32, kUtf16ToUtf32);

// Kinds whose check mode compares the output with the source.
bool comparesInCheckMode(std::int32_t kind) {
    switch (kind) {
    case kShiftJisToEuc:
    case kEucToShiftJis:
    case kChain:
    case kByteToUtf8:
    case kUtf8ToByte:
    case kByteToUtf8Wide:
        return true;
    default:
        return false;
    }
}

bool isUnicodeForm(std::int32_t kind) {
    return kind >= kUcs2ToUtf8 && kind <= kUtf32ToUtf16;
}

// Whole units only: an odd capacity never lets half a unit through.
std::ptrdiff_t wholeUnits(std::int32_t kind, std::ptrdiff_t bytes) {
    if (isIn(kWritesUtf16, kind))
        return bytes & ~std::ptrdiff_t{1};
    return isIn(kWritesUtf32, kind) ? bytes & ~std::ptrdiff_t{3} : bytes;
}

template <typename Body>
const Body &bodyOf(const void *converter) {
    return *static_cast<const Body *>(converter);
}

// Runs the fast kernel of a kind, where there is one and nothing forbids it.
bool runFastKernel(std::int32_t kind, const void *converter, Source &source, Target &target,
                   nlsStatus &status) {
    const ConverterHeader &header = headerOf(converter);
    if (!areApart(source, target) || (header.type & (kSwapSource | kSwapTarget)) != 0)
        return false;
    switch (kind) {
    case kShiftJisToEuc:
        status = fast::shiftJisToEuc(header.proofs, source, target);
        return true;
    case kEucToShiftJis:
        status = fast::eucToShiftJis(header.proofs, source, target);
        return true;
    case kPageToUtf8:
    case kPageToUtf8Wide:
    case kPageToUtf8Widest:
        if (!fast::canMap(header.proofs))
            return false;
        status = fast::pageToUtf8(bodyOf<MappingBody>(converter), header.proofs, source, target);
        return true;
    case kUtf8ToPage:
    case kUtf8ToBytePage:
        if (!fast::canMap(header.proofs))
            return false;
        status = fast::utf8ToPage(bodyOf<MappingBody>(converter), header.proofs, source, target);
        return true;
    case kUcs2ToUtf8:
    case kUtf16ToUtf8:
        status = fast::utf16ToUtf8(header.proofs, source, target);
        return true;
    case kUtf8ToUcs2:
    case kUtf8ToUtf16:
        status = fast::utf8ToUtf16(header.proofs, source, target);
        return true;
    case kUtf32ToUtf8:
        status = fast::utf32ToUtf8(header.proofs, source, target);
        return true;
    case kUtf8ToUtf32:
        status = fast::utf8ToUtf32(header.proofs, source, target);
        return true;
    case kUtf16ToUtf32:
        status = fast::utf16ToUtf32(header.proofs, source, target);
        return true;
    case kUtf32ToUtf16:
        status = fast::utf32ToUtf16(header.proofs, source, target);
        return true;
    default:
        return false;
    }
}

// Runs the plain kernel of a kind. False for a kind that has none.
bool runPlainKernel(std::int32_t kind, const void *converter, Source &source, Target &target,
                    nlsStatus &status) {
    const std::int32_t word = kindWord(converter);
    switch (kind) {
    case kShiftJisToEuc:
        status = shiftJisToEuc(source, target);
        return true;
    case kEucToShiftJis:
        status = eucToShiftJis(source, target);
        return true;
    case kPageToUtf8:
    case kPageToUtf8Wide:
    case kPageToUtf8Widest:
        status = pageToUtf8(bodyOf<MappingBody>(converter), source, target);
        return true;
    case kUtf8ToPage:
    case kUtf8ToBytePage:
        status = utf8ToPage(bodyOf<MappingBody>(converter), source, target);
        return true;
    case kByteToUtf8:
    case kByteToUtf8Wide:
        status = byteToUtf8(bodyOf<ByteToUtf8Body>(converter), source, target);
        return true;
    case kUtf8ToByte:
        status = utf8ToByte(bodyOf<Utf8ToByteBody>(converter), source, target);
        return true;
    case kUcs2ToUtf8:
    case kUtf16ToUtf8:
        status = utf16ToUtf8(source, target, sourceOrder(word));
        return true;
    case kUtf8ToUcs2:
    case kUtf8ToUtf16:
        status = utf8ToUtf16(source, target, targetOrder(word));
        return true;
    case kUtf32ToUtf8:
        status = utf32ToUtf8(source, target, sourceOrder(word));
        return true;
    case kUtf8ToUtf32:
        status = utf8ToUtf32(source, target, targetOrder(word));
        return true;
    case kUtf16ToUtf32:
        status = utf16ToUtf32(source, target, sourceOrder(word), targetOrder(word));
        return true;
    case kUtf32ToUtf16:
        status = utf32ToUtf16(source, target, sourceOrder(word), targetOrder(word));
        return true;
    case kPageToUtf16:
        status = pageToUtf16(*bodyOf<Utf8LegBody>(converter).mapping, source, target, targetOrder(word));
        return true;
    case kUtf16ToPage:
        status = utf16ToPage(*bodyOf<Utf8LegBody>(converter).mapping, source, target, sourceOrder(word));
        return true;
    default:
        return false;
    }
}

// As strncmp over the bytes written, but never behind the source's own end.
bool sameText(const Request &request) {
    const auto length = static_cast<std::uint32_t>(std::max(request.sourceLength, 0));
    for (std::uint32_t i = 0; i < *request.written; ++i) {
        if (i >= length || request.destination[i] != request.source[i])
            return false;
        if (request.source[i] == 0)
            return true;
    }
    return true;
}

nlsStatus checked(const Request &request, std::int32_t kind, nlsStatus status) {
    const bool substitutesPass = kind == kChain || !(comparesInCheckMode(kind) || isUnicodeForm(kind));
    if (status != NLS_OK && !(status == NLS_R_SUBSTITUTED && substitutesPass))
        return status;
    const bool changed = comparesInCheckMode(kind) ? !sameText(request) : *request.written != 0;
    return changed ? NLS_R_CHANGED : status;
}

} // namespace

nlsStatus convert(const Request &request) {
    const std::int32_t kind = kindOf(request.converter);
    if (request.converter == nullptr)
        return copyIdentity(request);
    if (isIn(kReadsUtf8, kind) && request.sourceLength > 0 && (*request.source & 0xC0) == 0x80)
        return NLS_E_NULLARG;
    if (request.check && comparesInCheckMode(kind) && request.source == request.destination)
        return NLS_E_NULLARG;

    Source source{request.source, request.source + std::max(request.sourceLength, 0), request.behind};
    Target target{request.destination, request.destination + signedCapacity(request.capacity)};
    nlsStatus status = NLS_OK;
    if (kind == kChain) {
        status = convertChain(request);
    } else if (kind == kByteMap) {
        status = convertByteMap(request, source, target);
        if (status != NLS_E_BUFFER)
            *request.written = static_cast<std::uint32_t>(target.at - request.destination);
        return status;
    } else if (runFastKernel(kind, request.converter, source, target, status) ||
               runPlainKernel(kind, request.converter, source, target, status)) {
        *request.written = static_cast<std::uint32_t>(wholeUnits(kind, target.at - request.destination));
    } else if (kind == kUnicodeToIcu || kind == kIcuToUnicode) {
        status = icu::convert(request.converter, source, target);
        if (status != NLS_OK)
            return status;
        *request.written = static_cast<std::uint32_t>(target.at - request.destination);
    } else {
        if (target.room() > 0)
            *target.at = 0;
        return NLS_OK;
    }
    return request.check ? checked(request, kind, status) : status;
}

std::uint32_t terminatorWidth(const void *converter) {
    switch (kindOf(lastStepOf(converter))) {
    case kUtf8ToUcs2:
    case kUtf8ToUtf16:
    case kUtf32ToUtf16:
    case kPageToUtf16:
        return 2;
    case kUtf8ToUtf32:
    case kUtf16ToUtf32:
        return 4;
    default:
        return 1;
    }
}

nlsStatus convertText(const void *converter, const nlsStr &source, nlsStr *intermediate,
                      nlsStr &destination) {
    const auto sourceLength = static_cast<std::int32_t>(source.length); // both may be one record
    destination.length = 0; // what stands when nothing is converted
    const bool chained = kindOf(converter) == kChain && intermediate != nullptr;
    const nlsStatus status =
        convert({.destination = reinterpret_cast<std::uint8_t *>(destination.buffer),
                 .capacity = destination.size,
                 .source = reinterpret_cast<std::uint8_t *>(source.buffer),
                 .sourceLength = sourceLength,
                 .intermediate = chained ? reinterpret_cast<std::uint8_t *>(intermediate->buffer) : nullptr,
                 .intermediateCapacity = chained ? intermediate->size : 0,
                 .converter = converter,
                 .written = &destination.length});
    const std::uint32_t width = terminatorWidth(converter);
    if (std::uint64_t{destination.length} + width > destination.size)
        return NLS_E_BUFFER;
    for (std::uint32_t i = 0; i < width; ++i)
        destination.buffer[destination.length + i] = '\0';
    return status;
}

nlsStatus convertCharacter(const void *converter, std::uint32_t character, std::uint32_t &result) {
    if (converter == nullptr) {
        result = character;
        return NLS_OK;
    }
    // Four bytes of text with zeros behind them, since decoders may look one byte further.
    alignas(2) std::uint8_t buffer[8] = {};
    alignas(2) std::uint8_t copy[8] = {};
    const std::int32_t length = character < 0x100       ? 1
                                : character < 0x10000   ? 2
                                : character < 0x1000000 ? 3
                                                        : 4;
    for (std::int32_t i = 0; i < length; ++i)
        buffer[i] = static_cast<std::uint8_t>(character >> 8 * (length - 1 - i));
    // In place, but for ICU, which does not say that it reads a character whole before it writes.
    const std::int32_t kind = kindOf(converter);
    const bool inPlace = kind != kUnicodeToIcu && kind != kIcuToUnicode;
    if (!inPlace)
        std::memcpy(copy, buffer, sizeof copy);
    std::uint32_t written = 0;
    const nlsStatus status = convert({.destination = buffer,
                                      .capacity = 4,
                                      .source = inPlace ? buffer : copy,
                                      .sourceLength = length,
                                      .converter = converter,
                                      .written = &written});
    if (written == 0 || written > 4)
        return NLS_E_NULLARG;
    const std::uint32_t counted = kind == kUtf8ToUtf32 ? 1 : written;
    result = 0;
    for (std::uint32_t i = 0; i < counted; ++i)
        result = result << 8 | buffer[i];
    return status;
}

} // namespace velnls
