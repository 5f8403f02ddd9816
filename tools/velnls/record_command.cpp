// velnls record: a collation kept in a file, against the one of the data file.
#include "commands.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <stdexcept>
#include <vector>

#include "ordered_page.hpp"
#include "output.hpp"
#include "page_names.hpp"
#include "route.hpp"
#include "stored_record.hpp"

namespace velnls::tool {

namespace {

constexpr const char *kKindWords[] = {"weights", "weights", "user sort exit", "bytes", "Thai weights", "ICU"};

constexpr std::uint32_t kIcuKind = 5;
// Of the version of ICU's collator, in the tables of a record.
constexpr std::size_t kVersionPlace = 16;
constexpr std::size_t kVersionSize = 4;

struct Placed {
    std::string character;
    std::string stored; // key
    std::string now;
};

std::string keyOf(nlsLocale *locale, std::string character, std::uint16_t mode) {
    std::array<unsigned char, 64> key = {};
    std::uint16_t length = 0;
    const nlsStatus status = nlsSortKey(locale, character.data(), key.size(), mode, 0, key.data(), &length);
    if (status != NLS_OK) {
        throw StatusError("making a sort key", status);
    }
    return std::string(reinterpret_cast<const char *>(key.data()), length);
}

// Every character of up to two bytes, and those of three in UTF-8: all that collations of tables tell apart.
std::vector<std::string> charactersOf(const Page &page) {
    std::vector<std::string> characters;
    if (page.form == Form::Utf8) {
        for (unsigned code = 1; code < 0x10000; ++code) {
            const auto part = [&](unsigned shift) {
                return static_cast<char>(0x80 | (code >> shift & 0x3F));
            };
            if (code < 0x80) {
                characters.push_back({static_cast<char>(code)});
            } else if (code < 0x800) {
                characters.push_back({static_cast<char>(0xC0 | code >> 6), part(0)});
            } else if (code < 0xD800 || code > 0xDFFF) {
                characters.push_back({static_cast<char>(0xE0 | code >> 12), part(6), part(0)});
            }
        }
        return characters;
    }
    for (unsigned first = 1; first < 256; ++first) {
        if (page.trailCount[first] == 0) {
            characters.push_back({static_cast<char>(first)});
        }
        for (unsigned second = 1; page.trailCount[first] == 1 && second < 256; ++second) {
            if (page.trailValid[second] != 0) {
                characters.push_back({static_cast<char>(first), static_cast<char>(second)});
            }
        }
    }
    return characters;
}

int sign(int number) {
    return number < 0 ? -1 : number > 0 ? 1 : 0;
}

// The fewest characters without which the others stand to each other as they did: all but the longest chain
// in which neighbours do. Weights are ranks, so one character that moves shifts the weights of many.
std::vector<std::string> movedByRank(std::vector<Placed> all) {
    std::sort(all.begin(), all.end(), [](const Placed &a, const Placed &b) {
        return a.stored != b.stored ? a.stored < b.stored : a.now < b.now;
    });
    std::vector<std::size_t> length(all.size(), 1);
    std::vector<std::size_t> before(all.size(), all.size());
    std::size_t best = 0;
    for (std::size_t i = 0; i < all.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (length[j] + 1 > length[i] &&
                sign(all[j].stored.compare(all[i].stored)) == sign(all[j].now.compare(all[i].now))) {
                length[i] = length[j] + 1;
                before[i] = j;
            }
        }
        best = length[i] > length[best] ? i : best;
    }
    std::vector<bool> stays(all.size(), false);
    for (std::size_t at = best; at < all.size(); at = before[at]) {
        stays[at] = true;
    }
    std::vector<std::string> moved;
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (!stays[i]) {
            moved.push_back(all[i].character);
        }
    }
    std::sort(moved.begin(), moved.end());
    return moved;
}

std::vector<std::string> movedCharacters(const Page &page, nlsLocale *stored, nlsLocale *now,
                                         std::uint16_t mode) {
    std::vector<Placed> all;
    for (const std::string &character : charactersOf(page)) {
        all.push_back({character, keyOf(stored, character, mode), keyOf(now, character, mode)});
    }
    if (page.form == Form::SingleByte) {
        return movedByRank(std::move(all));
    }
    // Keys of multibyte pages are bytes of the text, not ranks.
    std::vector<std::string> moved;
    for (const Placed &placed : all) {
        if (placed.stored != placed.now) {
            moved.push_back(placed.character);
        }
    }
    return moved;
}

std::string hexText(const std::string &bytes) {
    std::string words = "0x";
    for (const char byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned char>(byte));
        words += digits;
    }
    return words;
}

// The code, and the character itself unless it is a control character or has no Unicode value.
std::string characterWords(Route &toUtf8, const std::string &character) {
    ByteBuffer utf8;
    const auto *bytes = reinterpret_cast<const unsigned char *>(character.data());
    if (!toUtf8.convert(bytes, character.size(), utf8)) {
        const std::string text(utf8.data(), utf8.size());
        const bool control = static_cast<unsigned char>(text[0]) < 0x20 || text[0] == 0x7F ||
                             (text[0] == '\xC2' && static_cast<unsigned char>(text[1]) < 0xA0);
        return hexText(character) + (control ? "" : " " + text);
    }
    return hexText(character);
}

// The four bytes that ICU gives to a collator, which stand behind its address and eight bytes in the tables.
std::string collatorVersion(const StoredRecord &record) {
    return {reinterpret_cast<const char *>(record.record().data) + kVersionPlace, kVersionSize};
}

int make(const RecordOptions &options) {
    OrderOptions order;
    order.page = options.page;
    order.collation = options.collation;
    order.data = options.data;
    const OrderedPage page(order);
    const std::string bytes = StoredRecord(page.locale()).bytes();
    Output output(options.file);
    output.write(bytes.data(), bytes.size());
    output.commit();
    return kExitDone;
}

int show(const RecordOptions &options) {
    const StoredRecord stored(options.file);
    const nlsDbCollation &record = stored.record();
    const std::string kind =
        record.collationKind < std::size(kKindWords) ? kKindWords[record.collationKind] : "weights";
    const std::string text =
        std::string("page        ") + record.codePageName + "\ncollation   " + record.collationName +
        "\ncase table  " + (record.caseTableName[0] == '\0' ? "none" : record.caseTableName) +
        "\norder by    " + kind + "\ndata        " + std::to_string(record.dataSize) + " bytes\n";
    Output output("");
    output.write(text.data(), text.size());
    return kExitDone;
}

int verify(const RecordOptions &options) {
    const StoredRecord stored(options.file);
    const DataSource data(options.data);
    Library library(data);
    const Page page = describeWalkedPage(library, stored.record().codePageName);
    nlsLocale *const now =
        library.locale(page.name, stored.record().collationName, stored.record().caseTableName);
    std::string text;
    bool moved = false;
    const StoredRecord today(now);
    if (today.bytes() == stored.bytes()) {
        text = "the same order: no table has changed\n";
    } else if (stored.record().collationKind == kIcuKind) {
        // A rebuilt locale opens ICU's collator of today, so the two cannot be compared; ICU's own version
        // can.
        moved = collatorVersion(stored) != collatorVersion(today);
        text = moved ? "characters may have moved: ICU's collator has another version\n"
                     : "the same order: ICU's collator has the same version\n";
    } else {
        nlsLocale *const then = library.rebuild(stored.record(), "stored record");
        const Page utf8 = describePage(library, resolvePage(library, "UTF-8"));
        Route toUtf8(library, page, utf8);
        for (const std::uint16_t mode : {std::uint16_t{1}, std::uint16_t{0}}) {
            const std::vector<std::string> characters = movedCharacters(page, then, now, mode);
            moved = moved || !characters.empty();
            text += characters.empty()
                        ? ""
                        : std::string("moved, letter case ") + (mode != 0 ? "counts:\n" : "ignored:\n");
            for (const std::string &character : characters) {
                text += "  " + characterWords(toUtf8, character) + "\n";
            }
        }
        if (!moved) {
            text = "the same order: tables have changed, but no character has moved\n";
        }
    }
    Output output("");
    output.write(text.data(), text.size());
    return moved ? kExitMoved : kExitDone;
}

} // namespace

int runRecord(const RecordOptions &options) {
    return options.action == "make"   ? make(options)
           : options.action == "show" ? show(options)
                                      : verify(options);
}

} // namespace velnls::tool
