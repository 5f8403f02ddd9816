#include "collate/key.hpp"

#include "collate/basic.hpp"
#include "collate/compare.hpp"
#include "collate/prefix.hpp"
#include "collate/shift_jis.hpp"
#include "collate/sort_exit.hpp"
#include "collate/thai.hpp"
#include "collate/weights.hpp"
#include "icu/collate.hpp"
#include "locale/case_text.hpp"

#include <cstring>

namespace velnls {

namespace {

// The BASIC key: the text itself, or in lower case. Nothing is written when it does not fit.
void writeBasicKey(const nlsLocale &locale, Text text, unsigned mode, std::uint8_t *key, std::size_t size) {
    if (mode > 1)
        return;
    const std::size_t length = lengthOf(text);
    if (length >= size)
        return;
    if (mode == 1) {
        std::memmove(key, text.at, length);
        key[length] = 0;
        return;
    }
    const CaseResult result =
        mapTextCase<Case::Lower>(locale, {text.at, text.at + length}, text.at + length, key, size - 1);
    key[result.written] = 0;
}

// The same of a text that goes through Shift-JIS, as if the converted text lay in a buffer of its own.
void writeBasicKeyThroughShiftJis(const nlsLocale &locale, const ShiftJisWay &way, Text text, unsigned mode,
                                  std::uint8_t *key, std::size_t size) {
    if (mode > 1 || size == 0)
        return;
    std::size_t length = 0;
    const auto put = [&](std::uint8_t byte) {
        if (length < size - 1)
            key[length++] = byte;
    };
    ShiftJisBytes bytes(*locale.charTable, way, text);
    while (length < size - 1 && bytes.more()) {
        const std::uint8_t byte = bytes.take();
        const bool pair = way.chars->trailCount(byte) != 0;
        // Only single bytes have a case in a page of one and two bytes.
        put(pair || mode == 1 ? byte : static_cast<std::uint8_t>(foldNumber(locale, byte)));
        if (pair && bytes.more())
            put(bytes.take());
    }
    key[length] = 0;
}

// The form of a text that goes through Shift-JIS, as much as fits, in the buffer of the key to come.
Text shiftJisForm(const nlsLocale &locale, const ShiftJisWay &way, Text text, std::uint8_t *room,
                  std::size_t size) {
    std::size_t length = 0;
    ShiftJisBytes bytes(*locale.charTable, way, text);
    while (length < size && bytes.more())
        room[length++] = bytes.take();
    return {room, room + length};
}

// Runs `write` with the way to Shift-JIS that the page goes; null for a page that goes none.
template <typename Write>
nlsStatus withShiftJisWay(const nlsLocale &locale, Write write) {
    if (!locale.charTable->has(file::kThroughShiftJis)) {
        write(nullptr);
        return NLS_OK;
    }
    ShiftJisWay way{};
    const nlsStatus status = findShiftJisWay(locale, way);
    if (status == NLS_OK)
        write(&way);
    return status;
}

} // namespace

nlsStatus writeTableKey(const nlsLocale &locale, Text text, unsigned mode, bool trimKey, std::uint8_t *key,
                        std::size_t size) {
    return withShiftJisWay(locale, [&](const ShiftJisWay *way) {
        if (size == 0)
            return;
        const WeightOrder order{weightsOf(*locale.collation, mode), locale.charTable};
        const Expansion expansion =
            spellsLiteralSs(*locale.collation) ? Expansion::Literal : Expansion::Weights;
        std::size_t length = 0;
        if (order.weights != nullptr)
            length = way == nullptr
                         ? writeWeightKey(order, expansion, text, key, size - 1)
                         : writeWeightKeyThroughShiftJis(order, *way, expansion, text, key, size - 1);
        while (trimKey && length > 0 && key[length - 1] == ' ')
            --length;
        key[length] = 0;
    });
}

nlsStatus writeIcuKey(const nlsLocale &locale, Text text, unsigned mode, std::uint8_t *key,
                      std::size_t size) {
    nlsStatus status = NLS_OK;
    const nlsStatus found = withShiftJisWay(locale, [&](const ShiftJisWay *way) {
        const Text source = way == nullptr ? text : shiftJisForm(locale, *way, text, key, size);
        status = icu::writeKey(*locale.collation, source, mode, key, size);
    });
    return found == NLS_OK ? status : found;
}

nlsStatus writeSortKey(const nlsLocale &locale, Text text, unsigned wholeMode, bool trimKey,
                       std::uint8_t *key, std::size_t size) {
    const Collation &collation = *locale.collation;
    // Only ICU reads the two bits.
    const unsigned mode = wholeMode & ~(icu::kKeyIgnored | icu::kKeyPrimary);
    switch (collation.kind) {
    case file::kSortExit:
        return writeExitKey(collation, text, mode, key, size);
    case file::kIcu:
        return icu::isServed(collation) ? writeIcuKey(locale, text, wholeMode, key, size)
                                        : writeTableKey(locale, text, mode, trimKey, key, size);
    case file::kThai:
        if (size != 0)
            key[writeThaiKey(mode != 0 ? collation.caseSensitive : collation.caseInsensitive, text, key,
                             size - 1)] = 0;
        return NLS_OK;
    case file::kBasic:
        return withShiftJisWay(locale, [&](const ShiftJisWay *way) {
            if (way == nullptr)
                writeBasicKey(locale, text, mode, key, size);
            else
                writeBasicKeyThroughShiftJis(locale, *way, text, mode, key, size);
        });
    default:
        return writeTableKey(locale, text, mode, trimKey, key, size);
    }
}

} // namespace velnls
