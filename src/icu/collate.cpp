#include "icu/collate.hpp"

#include "core/collation_names.hpp"
#include "icu/binding.hpp"
#include "icu/utf8_converter.hpp"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <string_view>

namespace velnls::icu {

namespace {

constexpr std::string_view kRootName = "UCA";
constexpr std::string_view kStrengths = "PRIMARY,SECONDARY,TERTIARY,QUATERNARY,IGNORE-SECONDARY";
constexpr char kSensitiveStrength[] = "TERTIARY";
constexpr char kInsensitiveStrength[] = "SECONDARY";
constexpr std::int32_t kPrimary = 0;
constexpr std::int32_t kNoStrength = -1;
constexpr unsigned kFirstStrengthMode = 4; // the modes from here on are strengths from 0 on
constexpr unsigned kLastStrengthMode = 8;
constexpr unsigned kKeyOnlyMode = 7;

// What stands in a weight area of a record that ICU serves.
struct [[gnu::packed]] Area {
    Collator *collator; // one for both areas
    std::uint8_t unused[8];
    std::uint8_t version[4];
    std::uint8_t form[4];
    std::uint8_t zeros[4];
    char localeName[16];
    char strength[212];
};
static_assert(sizeof(Area) == sizeof(Collation::caseSensitive));

constexpr std::uint8_t kForm[4] = {3, 1, 1, 0};

Area &areaOf(Collation &record, bool sensitive) {
    return *reinterpret_cast<Area *>(sensitive ? record.caseSensitive : record.caseInsensitive);
}
const Area &areaOf(const Collation &record, bool sensitive) {
    return *reinterpret_cast<const Area *>(sensitive ? record.caseSensitive : record.caseInsensitive);
}

// The default order stands in for a language that ICU lacks. That will do for English and for the root only.
bool takesDefault(std::string_view name) {
    return name.empty() || name == "en" || name.substr(0, 3) == "en_";
}

Collator *openLocale(const char *name) {
    if (bind(kCollation) != NLS_OK)
        return nullptr;
    const CollatorFunctions &icu = functions().collators;
    ErrorCode error = kNoError;
    Collator *const collator = icu.open(name, &error);
    if (error > kNoError || collator == nullptr)
        return nullptr;
    if (error == kUsingDefault && !takesDefault(name)) {
        icu.close(collator);
        return nullptr;
    }
    return collator;
}

// The place of a strength's name in the list.
[[gnu::noinline]] std::int32_t placeOfName(const char *name) {
    const std::size_t at = kStrengths.find(name);
    if (at == std::string_view::npos)
        return kNoStrength;
    std::int32_t strength = 0;
    for (const char c : kStrengths.substr(0, at))
        strength += c == ',' ? 1 : 0;
    return strength;
}

std::int32_t strengthOfName(const char *name) {
    // The two that the areas have, without a search.
    if (std::memcmp(name, kSensitiveStrength, sizeof kSensitiveStrength) == 0)
        return 2;
    if (std::memcmp(name, kInsensitiveStrength, sizeof kInsensitiveStrength) == 0)
        return 1;
    return placeOfName(name);
}

std::int32_t strengthOfMode(const Collation &record, unsigned mode) {
    if (mode <= 1)
        return strengthOfName(areaOf(record, mode == 1).strength);
    return mode >= kFirstStrengthMode && mode <= kLastStrengthMode
               ? static_cast<std::int32_t>(mode - kFirstStrengthMode)
               : kNoStrength;
}

std::size_t lengthOf(Text text) {
    const char *const at = reinterpret_cast<const char *>(text.at);
    if (text.end == terminatedText(text.at).end)
        return std::strlen(at);
    const void *const nul = std::memchr(at, 0, static_cast<std::size_t>(text.end - text.at));
    return static_cast<std::size_t>((nul == nullptr ? text.end : static_cast<const std::uint8_t *>(nul)) -
                                    text.at);
}

std::size_t lengthWithoutBlanks(Text text) {
    std::size_t length = lengthOf(text);
    while (length > 0 && text.at[length - 1] == ' ')
        --length;
    return length;
}

// A text in UTF-16. Long ones are the only memory that the library takes from the heap.
class Utf16Text {
public:
    Utf16Text() = default;
    ~Utf16Text() {
        if (units_ != own_)
            std::free(units_);
    }
    Utf16Text(const Utf16Text &) = delete;
    Utf16Text &operator=(const Utf16Text &) = delete;

    // 0, 2 or 22.
    nlsStatus decode(Converter *utf8, const std::uint8_t *text, std::size_t length) {
        std::size_t capacity = kShort;
        if (length > kShort) {
            capacity = length;
            void *const memory = length <= std::numeric_limits<std::int32_t>::max()
                                     ? std::malloc(length * sizeof(Unit))
                                     : nullptr;
            if (memory == nullptr)
                return NLS_E_BUFFER;
            units_ = static_cast<Unit *>(memory);
        }
        ErrorCode error = kNoError;
        length_ = functions().converters.toUChars(utf8, units_, static_cast<std::int32_t>(capacity),
                                                  reinterpret_cast<const char *>(text),
                                                  static_cast<std::int32_t>(length), &error);
        return error == kNoError || error == kNotTerminated ? NLS_OK : NLS_E_BADTABLE;
    }
    [[nodiscard]] const Unit *units() const {
        return units_;
    }
    [[nodiscard]] std::int32_t length() const {
        return length_;
    }

private:
    static constexpr std::size_t kShort = 2000;
    Unit own_[kShort];
    Unit *units_ = own_;
    std::int32_t length_ = 0;
};

} // namespace

nlsStatus openCollator(Collation &record) {
    record.kind = kUnusable;
    record.variant = 0;
    record.collatorOpen = 0;
    const std::string_view name(record.name, ::strnlen(record.name, sizeof record.name - 1));
    if (name.substr(0, kIcuPrefix.size()) != kIcuPrefix)
        return NLS_E_NOMEM;
    Area area{};
    std::string_view locale = name.substr(kIcuPrefix.size());
    if (locale == kRootName)
        locale.remove_prefix(locale.size());
    static_assert(sizeof record.name - 1 - kIcuPrefix.size() < sizeof area.localeName);
    std::memcpy(area.localeName, locale.data(), locale.size());
    area.collator = openLocale(area.localeName);
    if (area.collator == nullptr)
        return NLS_E_NOMEM;
    functions().collators.getVersion(area.collator, area.version);
    std::memcpy(area.form, kForm, sizeof area.form);
    std::memcpy(area.strength, kSensitiveStrength, sizeof kSensitiveStrength);
    areaOf(record, true) = area;
    std::memset(area.strength, 0, sizeof area.strength);
    std::memcpy(area.strength, kInsensitiveStrength, sizeof kInsensitiveStrength);
    areaOf(record, false) = area;
    record.kind = file::kIcu;
    record.collatorOpen = 1;
    return NLS_OK;
}

void closeCollator(Collation &record) {
    if (!isServed(record))
        return;
    closeCollator(collatorOf(record));
    record.kind = kUnusable;
    record.collatorOpen = 0;
}

void closeCollator(Collator *collator) {
    functions().collators.close(collator);
}

Collator *collatorOf(const Collation &record) {
    return areaOf(record, true).collator;
}

void clearAddresses(Collation &copy) {
    copy.next = nullptr;
    if (!isServed(copy))
        return;
    areaOf(copy, true).collator = nullptr;
    areaOf(copy, false).collator = nullptr;
    copy.collatorOpen = 0;
}

nlsStatus compareTexts(const Collation &record, Text a, Text b, unsigned mode, int &result) {
    const std::size_t lengthA = lengthWithoutBlanks(a);
    const std::size_t lengthB = lengthWithoutBlanks(b);
    if (lengthA == 0 || lengthB == 0) {
        result = (lengthA != 0 ? 1 : 0) - (lengthB != 0 ? 1 : 0);
        return NLS_OK;
    }
    const std::int32_t strength = mode == kKeyOnlyMode ? kNoStrength : strengthOfMode(record, mode);
    if (strength == kNoStrength)
        return NLS_OK;
    Collator *const collator = collatorOf(record);
    functions().collators.setStrength(collator, strength);
    const Utf8Converter utf8;
    if (utf8.get() == nullptr)
        return NLS_E_NULLARG;
    Utf16Text unitsA;
    Utf16Text unitsB;
    if (const nlsStatus status = unitsA.decode(utf8.get(), a.at, lengthA); status != NLS_OK)
        return status;
    if (const nlsStatus status = unitsB.decode(utf8.get(), b.at, lengthB); status != NLS_OK)
        return status;
    const std::int32_t order = functions().collators.strcoll(collator, unitsA.units(), unitsA.length(),
                                                             unitsB.units(), unitsB.length());
    if (order > 1)
        return NLS_E_BADTABLE;
    result = order < 0 ? -1 : order;
    return NLS_OK;
}

nlsStatus writeKey(const Collation &record, Text text, unsigned mode, std::uint8_t *key, std::size_t size) {
    if (size == 0)
        return NLS_OK;
    const std::size_t length = lengthOf(text);
    const std::int32_t strength =
        (mode & kKeyPrimary) != 0 ? kPrimary : strengthOfMode(record, mode & ~kKeyIgnored);
    if (length == 0 || strength == kNoStrength) {
        key[0] = 0;
        return NLS_OK;
    }
    Collator *const collator = collatorOf(record);
    functions().collators.setStrength(collator, strength);
    const Utf8Converter utf8;
    Utf16Text units;
    const bool decoded = utf8.get() != nullptr && units.decode(utf8.get(), text.at, length) == NLS_OK;
    key[0] = 0; // only now: the text may stand there
    if (!decoded)
        return NLS_OK;
    const std::int32_t needed = functions().collators.getSortKey(collator, units.units(), units.length(), key,
                                                                 static_cast<std::int32_t>(size));
    return needed > static_cast<std::int64_t>(size) ? NLS_E_BUFFER : NLS_OK;
}

} // namespace velnls::icu
