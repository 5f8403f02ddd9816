// The calls under test with guarded arguments, and the checks that all of them begin with.
#pragma once

#include "converted.hpp"
#include "guarded_text.hpp"
#include "kits.hpp"
#include "status_rows.hpp"

#include <algorithm>
#include <cstring>
#include <functional>

namespace kit {

using fixture::gives;
using fixture::hex;

inline Bytes operator""_b(const char *text, std::size_t length) {
    return fixture::bytesOf({text, length});
}

// The modes that every collation knows, as the calls declare them; the last list has one that selects no
// table.
inline constexpr std::uint16_t kKeyModes[] = {0, 1};
inline constexpr std::int16_t kModes[] = {0, 1};
inline constexpr std::int16_t kModesAndOne[] = {0, 1, 2};

struct Key {
    nlsStatus status = 0;
    std::uint16_t length = 0xABCD;
    Bytes buffer; // all of it

    [[nodiscard]] Bytes text() const {
        return {buffer.begin(), buffer.begin() + std::min<std::ptrdiff_t>(length, std::ssize(buffer))};
    }
};

// The source is read-only, the key's buffer of exact size and full of `filler` before.
Key sortKey(nlsLocale *locale, const Bytes &source, std::uint16_t size = 512, std::uint16_t mode = 1,
            std::uint16_t trim = 0, const Bytes &filler = {});

struct Compared {
    nlsStatus status = 0;
    std::int16_t result = 77;
};

Compared compare(nlsLocale *locale, const Bytes &a, const Bytes &b, std::int16_t mode = 1);
// A length that is not -1 and within the text: nothing stands behind it.
Compared compareN(nlsLocale *locale, const Bytes &a, const Bytes &b, std::int32_t lengthA,
                  std::uint32_t lengthB, std::uint16_t mode = 1);

struct Cased {
    nlsStatus status = 0;
    std::uint32_t length = 0; // of the destination: 0xEEEE before the call
    Bytes buffer;             // the stated size and the byte behind it, 0xEE before the call
};

Cased mapCase(nlsLocale *locale, const Bytes &source, std::uint32_t size, bool upper);

using LocaleCall = std::function<nlsStatus(nlsLocale *)>;

// 13 for null and for a locale of a closed handle, 24 for what is no live locale.
void refusesWhatIsNoLocale(const char *exportName, const LocaleCall &call);
// 27, ahead of anything that `call` is given wrong besides null pointers.
void refusesWithoutCharacters(const char *exportName, const LocaleCall &call);

} // namespace kit
