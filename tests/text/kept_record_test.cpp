// Records that were written once and are kept as files: read beside a data file with other weights, they give
// the order and the keys that they gave on the day they were written.
#include "kept_records.hpp"

#include "harness/stored.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

using kit::Bytes;
using kit::Kit;
using kit::operator+;

namespace {

constexpr unsigned kTexts = 48;

struct Kept {
    const char *file;
    const char *locale;
    std::int32_t level;
};
constexpr Kept kRecords[] = {
    {"german", "1252 german", kit::kNewLevel},          {"literal", "1252 literal", kit::kNewLevel},
    {"german-old", "1252 german", kit::kOldLevel},      {"thai", "Thai", kit::kNewLevel},
    {"shift-jis", "SHIFT-JIS weights", kit::kNewLevel}, {"eucjis", "EUCJIS weights", kit::kNewLevel},
    {"utf8-basic", "UTF-8 BASIC", kit::kNewLevel},
};

std::string hexOf(const Bytes &bytes) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string out;
    for (const unsigned char byte : bytes) {
        out.push_back(kDigits[byte >> 4]);
        out.push_back(kDigits[byte & 15]);
    }
    return out.empty() ? "-" : out;
}

Bytes bytesOf(const std::string &hex) {
    Bytes out;
    for (std::size_t i = 0; hex != "-" && i + 1 < hex.size(); i += 2)
        out.push_back(static_cast<unsigned char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    return out;
}

// The file: names, four words, data.
Bytes fileOf(const kit::Stored &stored) {
    Bytes out(76);
    std::memcpy(&out[0], stored.record.codePageName, 20);
    std::memcpy(&out[20], stored.record.collationName, 20);
    std::memcpy(&out[40], stored.record.caseTableName, 20);
    const std::uint32_t words[] = {stored.record.collationKind, stored.record.collationWord,
                                   stored.record.dataSize, stored.record.blockSize};
    std::memcpy(&out[60], words, sizeof words);
    return out + stored.data;
}

kit::Stored storedOf(const Bytes &file) {
    kit::Stored stored;
    std::memcpy(stored.record.codePageName, &file.at(0), 20);
    std::memcpy(stored.record.collationName, &file.at(20), 20);
    std::memcpy(stored.record.caseTableName, &file.at(40), 20);
    std::uint32_t words[4];
    std::memcpy(words, &file.at(60), sizeof words);
    stored.record.collationKind = words[0];
    stored.record.collationWord = words[1];
    stored.record.dataSize = words[2];
    stored.record.blockSize = words[3];
    stored.data.assign(file.begin() + 76, file.end());
    return stored;
}

char signOf(nlsLocale *locale, const Bytes &a, const Bytes &b, std::int16_t mode) {
    const kit::Compared compared = kit::compare(locale, a, b, mode);
    return compared.status != NLS_OK ? '!' : "<=>"[compared.result + 1];
}

// One line per text with its two keys, then one line per text and mode with how it compares to each.
std::string orderOf(nlsLocale *locale, const std::vector<Bytes> &texts) {
    std::ostringstream out;
    for (const Bytes &text : texts)
        out << hexOf(text) << ' ' << hexOf(kit::sortKey(locale, text, 512, 0, 1).text()) << ' '
            << hexOf(kit::sortKey(locale, text, 512, 1, 1).text()) << '\n';
    for (const std::int16_t mode : kit::kModes)
        for (const Bytes &a : texts) {
            for (const Bytes &b : texts)
                out << signOf(locale, a, b, mode);
            out << '\n';
        }
    return out.str();
}

std::string contentsOf(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    std::ostringstream out;
    out << file.rdbuf();
    return out.str();
}

} // namespace

void writeKeptRecords(const std::string &folder) {
    kit::World world;
    for (const Kept &kept : kRecords) {
        const Kit &one = world[kept.locale];
        kit::TextMaker maker(51);
        std::vector<Bytes> texts;
        while (texts.size() < kTexts)
            texts.push_back(texts.size() % 3 == 0 ? maker.valid(one.script, 1 + maker.random.below(5))
                                                  : maker.variant(one.script, texts.back()));
        const Bytes record = fileOf(kit::store(one.locale, kept.level));
        std::ofstream(folder + "/" + kept.file + ".rec", std::ios::binary)
            .write(reinterpret_cast<const char *>(record.data()), std::ssize(record));
        std::ofstream(folder + "/" + kept.file + ".order", std::ios::binary) << orderOf(one.locale, texts);
    }
}

TEST(KeptRecord, GivesTheOrderOfItsDayUnderAChangedDataFile) {
    fixture::Library changed(kit::changedFile());
    for (const Kept &kept : kRecords) {
        const std::string path = std::string(VELNLS_RECORDS "/") + kept.file;
        const std::string record = contentsOf(path + ".rec");
        const std::string order = contentsOf(path + ".order");
        ASSERT_GT(record.size(), 76U);
        std::istringstream lines(order);
        std::vector<Bytes> texts;
        for (std::string text, keys; texts.size() < kTexts && lines >> text && std::getline(lines, keys);)
            texts.push_back(bytesOf(text));
        ASSERT_EQ(texts.size(), kTexts);
        const kit::Rebuilt rebuilt(changed.handle, storedOf({record.begin(), record.end()}));
        ASSERT_EQ(rebuilt.status, NLS_OK) << kept.file;
        EXPECT_EQ(orderOf(rebuilt.locale, texts), order) << kept.file;
        // The order of the changed data file is another one. (A library of its own: creating a locale would
        // find the rebuilt one.)
        fixture::Library another(kit::changedFile());
        nlsLocale *const today = another.locale(rebuilt.pageName(), "literal", "basic");
        EXPECT_NE(orderOf(today, texts), order) << kept.file;
    }
}

TEST(KeptRecord, TheRecordsAreThoseThatAreWrittenToday) {
    kit::World world;
    for (const Kept &kept : kRecords) {
        const std::string record = contentsOf(std::string(VELNLS_RECORDS "/") + kept.file + ".rec");
        EXPECT_EQ(Bytes(record.begin(), record.end()),
                  fileOf(kit::store(world[kept.locale].locale, kept.level)))
            << kept.file << ": the format has changed; stored records must still be read";
    }
}
