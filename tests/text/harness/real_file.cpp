#include "real_file.hpp"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>

namespace kit {

namespace {

using fixture::Bytes;

struct Entry {
    std::string name;
    std::string name2;
    std::size_t offset = 0;
    unsigned char format = 0;
    char kind = 0;
};

std::size_t number(const Bytes &bytes, std::size_t at, std::size_t width) {
    std::size_t value = 0;
    for (std::size_t i = at; i < at + width; ++i)
        if (bytes.at(i) >= '0' && bytes[i] <= '9')
            value = value * 10 + bytes[i] - '0';
    return value;
}

std::string text(const Bytes &bytes, std::size_t at) {
    return reinterpret_cast<const char *>(&bytes.at(at));
}

std::vector<Entry> directory(const Bytes &bytes) {
    std::vector<Entry> out;
    for (std::size_t i = 0; i < number(bytes, 8, 3); ++i) {
        const std::size_t at = number(bytes, 4, 2) + 64 * i;
        out.push_back({text(bytes, at), text(bytes, at + 20), number(bytes, at + 40, 7), bytes[at + 48],
                       static_cast<char>(bytes[at + 49])});
    }
    return out;
}

fixture::ByteTable table(const Bytes &bytes, std::size_t at) {
    fixture::ByteTable out{};
    std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), 256, out.begin());
    return out;
}

fixture::CharacterTable characters(const Bytes &bytes, const Entry &entry) {
    fixture::CharacterTable out;
    out.classes = table(bytes, entry.offset + 4);
    out.attributes = table(bytes, entry.offset + 516);
    out.trailValid = table(bytes, entry.offset + 1028);
    out.flags = entry.format;
    return out;
}

std::vector<std::pair<std::uint16_t, std::uint16_t>> pairs(const Bytes &bytes, std::size_t at) {
    std::vector<std::pair<std::uint16_t, std::uint16_t>> out;
    const auto unit = [&bytes](std::size_t place) {
        return static_cast<std::uint16_t>(bytes.at(place) | bytes.at(place + 1) << 8);
    };
    for (; unit(at) != 0; at += 4)
        out.emplace_back(unit(at), unit(at + 2));
    return out;
}

Bytes contentsOf(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("cannot read " + path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

const Entry *find(const std::vector<Entry> &entries, char kind, const std::string &name) {
    for (const Entry &entry : entries)
        if (entry.kind == kind && entry.name == name)
            return &entry;
    return nullptr;
}

constexpr std::size_t kMemory = std::size_t{8} << 20;

} // namespace

RealFile::RealFile()
    : contents_(contentsOf(VELNLS_DATA_FILE)), server_(std::make_unique<fixture::FileServer>(contents_)),
      memory_(kMemory) {
    if (nlsInit(server_->token(), memory_.data(), kMemory, &fixture::FileServer::read, &handle_) != NLS_OK)
        throw std::runtime_error("the data file does not open");
    const std::vector<Entry> entries = directory(contents_);
    for (const Entry &entry : entries) {
        if (entry.kind != '4')
            continue;
        RealCollation one{entry.name, entry.name2, {}, {}};
        const Entry *const page = find(entries, '2', entry.name);
        if (page == nullptr)
            throw std::runtime_error("a collation without page: " + entry.name);
        one.twin.characters = characters(contents_, *page);
        fixture::CollationTable collation;
        collation.sensitive = table(contents_, entry.offset + 4);
        collation.insensitive = table(contents_, entry.offset + 516);
        collation.kind = contents_.at(entry.offset + 1028);
        collation.variant = contents_.at(entry.offset + 1029);
        one.twin.collation = collation;
        if (const Entry *const cased = find(entries, '3', entry.name); cased != nullptr) {
            one.caseTable = cased->name2;
            if (cased->format == 2)
                one.twin.casePages.emplace(fixture::UnicodeCase{pairs(contents_, cased->offset + 6),
                                                                pairs(contents_, cased->offset + 2982)});
            else
                one.twin.byteCase = fixture::ByteCase{table(contents_, cased->offset + 4),
                                                      table(contents_, cased->offset + 516)};
        }
        if (one.twin.has(fixture::kThroughShiftJis))
            one.twin.companion = characters(contents_, *find(entries, '2', "SHIFT-JIS"));
        collations_.push_back(one);
    }
}

RealFile::~RealFile() {
    nlsClose(handle_);
}

nlsLocale *RealFile::locale(const RealCollation &collation) {
    nlsLocale *out = nullptr;
    const nlsStatus status =
        nlsCreateLocale(handle_, collation.page.c_str(), collation.name.c_str(),
                        collation.caseTable.empty() ? nullptr : collation.caseTable.c_str(), &out);
    return status == NLS_OK ? out : nullptr;
}

std::vector<Bytes> RealFile::wordsOf(const std::string &page, const std::vector<Bytes> &words) {
    if (page == "UTF-8")
        return words;
    nlsLocale *from = nullptr;
    nlsLocale *to = nullptr;
    nlsConversion *conversion = nullptr;
    if (nlsCreateLocale(handle_, "UTF-8", NLS_NO_COLLATION, nullptr, &from) != NLS_OK ||
        nlsCreateLocale(handle_, page.c_str(), NLS_NO_COLLATION, nullptr, &to) != NLS_OK ||
        nlsCreateConversion(handle_, from, to, &conversion) != NLS_OK)
        return {};
    std::vector<Bytes> out;
    for (const Bytes &word : words) {
        Bytes converted(word.size() * 4 + 8);
        std::string source(word.begin(), word.end());
        const nlsStr in{source.data(), static_cast<std::uint32_t>(source.size() + 1),
                        static_cast<std::uint32_t>(source.size())};
        nlsStr result{reinterpret_cast<char *>(converted.data()),
                      static_cast<std::uint32_t>(converted.size()), 0};
        if (nlsConvertNLS(conversion, &in, nullptr, &result) != NLS_OK)
            continue;
        converted.resize(result.length);
        out.push_back(converted);
    }
    return out;
}

std::vector<Bytes> manyWords() {
    std::set<std::string> words;
    constexpr std::size_t kPerText = 45;
    for (const char *const file :
         {"bench/samples/de.txt", "bench/samples/en.txt", "bench/samples/fr.txt", "bench/samples/ru.txt",
          "bench/samples/ja.txt", "bench/samples/ko.txt", "bench/samples/zh_CN.txt",
          "bench/samples/zh_TW.txt", "examples/text/litwo.utf8.txt", "examples/text/erlkoenig.utf8.txt",
          "examples/text/moment.utf8.txt"}) {
        const Bytes text = contentsOf(std::string(VELNLS_SOURCES "/") + file);
        std::set<std::string> taken;
        std::string word;
        for (const unsigned char byte : text) {
            if (byte > ' ' && word.size() < 60) {
                word.push_back(static_cast<char>(byte));
                continue;
            }
            if (!word.empty() && taken.size() < kPerText)
                taken.insert(word);
            word.clear();
        }
        words.insert(taken.begin(), taken.end());
    }
    for (const char *const trap :
         {"stra\xC3\x9F"
          "e",
          "strasse", "Strasse", "STRASSE", "stra\xC3\x9F", "stras", "strass", "s", "ss", "\xC3\x9F",
          "\xC3\x9Fx", "a", "A", "a ", "a  ", "a\t", "a b", "a-b", "ab", "Ab", "aB", "AB", "abc", "a'b", "1",
          "10", "2", "caf\xC3\xA9", "cafe", "Cafe", "CAFE", "CAF\xC3\x89", "\xC3\xA4", "\xC3\x84", "ae", "az",
          "\xCE\xB1\xCE\xB2", "\xCE\x91\xCE\x92", "\xCE\xB1", "\xD7\x90\xD7\x91", "\xD7\x91\xD7\x90",
          "\xD8\xA7\xD8\xA8", "\xD8\xA8\xD8\xA7",
          // Thai: leading vowels, vowels above, marks
          "\xE0\xB8\x81\xE0\xB8\xB2", "\xE0\xB9\x80\xE0\xB8\x81", "\xE0\xB9\x80\xE0\xB8\x82",
          "\xE0\xB8\x81\xE0\xB8\xB4", "\xE0\xB8\x81\xE0\xB8\xB4\xE0\xB9\x88", "\xE0\xB8\x81\xE0\xB9\x88",
          "\xE0\xB8\x81\xE0\xB9\x89", "\xE0\xB8\x82", "\xE0\xB9\x84\xE0\xB8\x97\xE0\xB8\xA2",
          "\xE0\xB8\x97\xE0\xB8\xB5\xE0\xB9\x88", "\xE0\xB9\x80\xE0\xB8\x97",
          // half-width kana beside kanji, four-byte characters in both cases
          "\xEF\xBD\xB1", "\xEF\xBD\xB2", "\xE4\xBA\x9C", "\xE3\x81\x82", "\xF0\x90\x90\x80",
          "\xF0\x90\x90\xA8", "?", "@"})
        words.insert(trap);
    std::vector<Bytes> out;
    for (const std::string &word : words)
        out.push_back(fixture::bytesOf(word));
    return out;
}

} // namespace kit
