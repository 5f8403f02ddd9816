#include "world.hpp"

#include <cstring>

namespace world {

using namespace fixture;

unsigned char sensitiveWeight(unsigned byte) {
    return byteOf(byte * 7 + 1);
}

unsigned char insensitiveWeight(unsigned byte) {
    return byteOf(255 - byte);
}

DataFile file() {
    DataFile data(80);
    data.codePage("UTF-8", CharacterTable::utf8());
    data.codePage("UTF-16", CharacterTable::singleByte(kMultibyte | kWide));
    data.codePage("UTF-16BE", CharacterTable::singleByte(kMultibyte | kWide));
    for (const char *const page : {"X", "WIDE", "BROAD", "MISSING"}) {
        data.codePage(page, CharacterTable::singleByte());
        data.conversion(page, "UTF-8", 177);
        data.conversion("UTF-8", page, 176);
        data.conversion(page, "UTF-16", 6);
        data.conversion("UTF-16", page, 5);
        data.conversion(page, "UTF-16BE", 175);
        data.conversion("UTF-16BE", page, 174);
    }
    data.codePage("P", CharacterTable::singleByte());
    data.caseTable("P", "basic", ByteCase::ascii());
    data.codePage("LENDER", CharacterTable::singleByte());
    data.codePage("BORROWER", CharacterTable::singleByte(kBorrows));
    CollationTable exit;
    for (unsigned byte = 0; byte < 256; ++byte) {
        exit.sensitive[byte] = sensitiveWeight(byte);
        exit.insensitive[byte] = insensitiveWeight(byte);
    }
    data.collation("P", "weights", exit);
    exit.kind = 5; // no data file has that
    data.collation("UTF-8", "five", exit);
    exit.kind = 2;
    data.collation("P", "Site", exit);
    data.collation("P", "other", exit);
    data.collation("LENDER", "lent", exit);
    const ByteTable identity = identityTable();
    data.conversion("LENDER", "BORROWER", 1, Bytes(identity.begin(), identity.end()), 1);
    data.collation("P", "basic", CollationTable::basic());
    data.collation("UTF-8", "basic", CollationTable::basic());
    data.codePage("SHIFT-JIS", CharacterTable::doubleByte());
    data.codePage("EUC", CharacterTable::doubleByte(kMultibyte | kThroughShiftJis));
    data.conversion("EUC", "SHIFT-JIS", 2); // an unknown kind: every character stands for itself
    return data;
}

Bytes area(const nlsLocale *locale, bool sensitive) {
    const auto *const record = static_cast<const unsigned char *>(peek::collation(locale));
    return {record + (sensitive ? 0 : 256), record + (sensitive ? 256 : 512)};
}

std::int32_t kind(const nlsLocale *locale) {
    std::int32_t value = 0;
    std::memcpy(&value, static_cast<const unsigned char *>(peek::collation(locale)) + 524, sizeof value);
    return value;
}

} // namespace world
