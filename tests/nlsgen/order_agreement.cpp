#include "order_agreement.hpp"

#include "file_lookup.hpp"
#include "real_files.hpp"

#include <unicode/ucol.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <numeric>
#include <random>
#include <stdexcept>

namespace velnls::nlsgen::test {
namespace {

using Key = std::basic_string<std::uint8_t>;

// The weights of a collation as the data file has them, applied to words as the library's keys are defined.
class TableOrder {
public:
    TableOrder(const Bytes &file, const std::string &page, const std::string &collation) {
        std::memcpy(&weights_, file.data() + recordOffset(file, entryNumber(file, '4', page, collation)),
                    sizeof weights_);
        const FileLookup lookup(file, recordOffset(file, entryNumber(file, '1', page, "UTF-8")));
        for (std::uint16_t byte = 1; byte < 256; byte++)
            bytes_.emplace(lookup.toUnicode(byte).value_or(byte), static_cast<std::uint8_t>(byte));
    }

    // The word in the page's bytes, if it can be written.
    [[nodiscard]] std::optional<Key> encode(const std::u16string &word) const {
        Key text;
        for (const char16_t unit : word) {
            const auto found = bytes_.find(unit);
            if (found == bytes_.end())
                return std::nullopt;
            text += found->second;
        }
        return text;
    }

    [[nodiscard]] Key keyOf(const Key &text, bool sensitive) const {
        const std::uint8_t *weights = sensitive ? weights_.caseSensitive : weights_.caseInsensitive;
        if (weights_.kind == file::kThai)
            return thaiKeyOf(text, weights);
        Key key;
        for (const std::uint8_t byte : text) {
            if (weights[byte] == 0)
                key.append(2, weights[0x73]);
            else
                key += weights[byte];
        }
        return key;
    }

private:
    enum ThaiClass {
        kOther,
        kBase,
        kVowelSign,
        kLeadingVowel,
        kMark
    };

    static ThaiClass thaiClassOf(std::uint8_t byte) {
        if (byte == 0xD1 || (byte >= 0xD4 && byte <= 0xD9) || byte == 0xED)
            return kVowelSign;
        if (byte >= 0xE0 && byte <= 0xE4)
            return kLeadingVowel;
        if (byte >= 0xE7 && byte <= 0xEC)
            return kMark;
        const bool base = (byte >= 0xA1 && byte <= 0xCE) || byte == 0xD0 || byte == 0xD2 || byte == 0xD3 ||
                          byte == 0xDA || byte == 0xDB || (byte >= 0xDD && byte <= 0xDF) || byte == 0xE5 ||
                          byte == 0xEE || byte >= 0xFC;
        return base ? kBase : kOther;
    }

    // A consonant comes before the vowel written in front of it; the signs above and below share one cell.
    static Key thaiKeyOf(const Key &text, const std::uint8_t *weights) {
        constexpr std::uint8_t kCell = 128;
        constexpr std::uint8_t kEmpty = 2;
        Key key;
        for (std::size_t i = 0; i < text.size(); i++) {
            const std::uint8_t weight = weights[text[i]];
            switch (thaiClassOf(text[i])) {
            case kOther:
                key += weight;
                continue;
            case kBase:
                key.append({weight, kEmpty});
                continue;
            case kLeadingVowel:
                if (i + 1 < text.size() && thaiClassOf(text[i + 1]) == kBase)
                    key.append({weights[text[++i]], kCell, weight, kEmpty});
                else
                    key.append({weight, kEmpty});
                continue;
            default:
                break;
            }
            if (i == 0 || thaiClassOf(text[i - 1]) == kOther)
                key.append({kCell, kEmpty});
            std::uint8_t &last = key.back();
            if (thaiClassOf(text[i]) == kVowelSign) {
                if ((last & 0x78) != 0)
                    key.append({kCell, static_cast<std::uint8_t>(weight | kEmpty)});
                else
                    last = static_cast<std::uint8_t>(last | weight);
            } else if ((last & 0x07) != kEmpty) {
                key.append({kCell, weight});
            } else {
                last = static_cast<std::uint8_t>((last & ~0x07) | weight);
            }
        }
        return key;
    }

    file::Collation weights_{};
    std::map<std::uint32_t, std::uint8_t> bytes_;
};

class IcuOrder {
public:
    explicit IcuOrder(const char *locale) {
        UErrorCode error = U_ZERO_ERROR;
        collator_.reset(ucol_open(locale, &error));
        if (U_FAILURE(error))
            throw std::runtime_error(std::string("no ICU collator ") + locale);
    }

    [[nodiscard]] Key keyOf(const std::u16string &word, UCollationStrength strength, bool caseLevel) const {
        UErrorCode error = U_ZERO_ERROR;
        ucol_setStrength(collator_.get(), strength);
        ucol_setAttribute(collator_.get(), UCOL_CASE_LEVEL, caseLevel ? UCOL_ON : UCOL_OFF, &error);
        std::uint8_t buffer[1024];
        const int32_t length = ucol_getSortKey(collator_.get(), word.data(),
                                               static_cast<int32_t>(word.size()), buffer, sizeof buffer);
        if (U_FAILURE(error) || length > static_cast<int32_t>(sizeof buffer))
            throw std::runtime_error("a word is too long for its ICU key");
        return {buffer, static_cast<std::size_t>(length)};
    }

private:
    struct Close {
        void operator()(UCollator *collator) const {
            ucol_close(collator);
        }
    };
    std::unique_ptr<UCollator, Close> collator_;
};

int signOf(const Key &a, const Key &b) {
    const int order = a.compare(b);
    return (order > 0) - (order < 0);
}

Agreement compareKeys(const std::vector<Key> &table, const std::vector<Key> &icu) {
    constexpr std::size_t kMostPairs = 4'000'000;
    const std::size_t count = table.size();
    if (count < 2)
        return {};
    std::size_t alike = 0;
    std::size_t pairs = 0;
    const auto compare = [&](std::size_t a, std::size_t b) {
        pairs++;
        alike += signOf(table[a], table[b]) == signOf(icu[a], icu[b]) ? 1 : 0;
    };
    const auto percent = [&] { return 100.0 * static_cast<double>(alike) / static_cast<double>(pairs); };
    if (count * (count - 1) / 2 <= kMostPairs) {
        for (std::size_t a = 0; a < count; a++)
            for (std::size_t b = a + 1; b < count; b++)
                compare(a, b);
    } else {
        std::mt19937_64 random(4242); // the same pairs every time
        while (pairs < kMostPairs)
            if (const std::size_t a = random() % count, b = random() % count; a != b)
                compare(a, b);
    }
    Agreement agreement;
    agreement.anyTwo = percent();
    std::vector<std::size_t> sorted(count);
    std::iota(sorted.begin(), sorted.end(), std::size_t{0});
    std::stable_sort(sorted.begin(), sorted.end(),
                     [&icu](std::size_t a, std::size_t b) { return icu[a] < icu[b]; });
    alike = pairs = 0;
    for (std::size_t i = 1; i < count; i++)
        compare(sorted[i - 1], sorted[i]);
    agreement.neighbours = percent();
    return agreement;
}

} // namespace

const std::vector<AgreementRow> &agreementRows() {
    static const std::vector<AgreementRow> rows = {
        {"English", "1252", "basic", "en", "dict/american-english"},
        {"French", "1252", "basic", "fr", "dict/french"},
        {"Spanish", "1252", "basic", "es", "dict/spanish"},
        {"Italian", "1252", "basic", "it", "dict/italian"},
        {"Portuguese", "1252", "basic", "pt", "dict/portuguese"},
        {"Dutch", "1252", "basic", "nl", ""},
        {"Hungarian", "1250", "basic", "hu", ""},
        {"German", "1252", "german", "de", "dict/ngerman"},
        {"German", "1252", "phonebook", "de@collation=phonebook", "dict/ngerman"},
        {"Swedish", "1252", "swedish", "sv", "dict/swedish"},
        {"Finnish", "1252", "finnish", "fi", ""},
        {"Danish", "1252", "danish", "da", "dict/danish"},
        {"Norwegian", "1252", "norwegian", "no", "dict/bokmaal"},
        {"Icelandic", "1252", "icelandic", "is", ""},
        {"Estonian", "1257", "estonian", "et", ""},
        {"Czech", "1250", "czech", "cs", ""},
        {"Slovak", "1250", "slovak", "sk", ""},
        {"Polish", "1250", "polish", "pl", "dict/polish"},
        {"Croatian", "1250", "croatian", "hr", ""},
        // Today's s and t with comma below are in no page; the older cedilla is, so few names are left.
        {"Romanian", "1250", "romanian", "ro", ""},
        {"Serbian", "1251", "serbian", "sr", ""},
        {"Macedonian", "1251", "macedonian", "mk", ""},
        {"Lithuanian", "1257", "lithuanian", "lt", ""},
        {"Latvian", "1257", "latvian", "lv", ""},
        {"Turkish", "1254", "turkish", "tr", ""},
        {"Russian", "1251", "basic", "ru", ""},
        {"Bulgarian", "1251", "basic", "bg", "dict/bulgarian"},
        {"Ukrainian", "1251", "basic", "uk", "dict/ukrainian"},
        {"Greek", "1253", "basic", "el", ""},
        {"Hebrew", "ISO8859-8", "basic", "he", ""},
        {"Arabic", "1256", "basic", "ar", ""},
        {"Thai", "620-2533", "basic", "th", "hunspell/th_TH.dic"},
        {"French", "1252", "noaccents", "fr", "dict/french"},
        {"Portuguese", "1252", "noaccents", "pt", "dict/portuguese"},
    };
    return rows;
}

AgreementFigures measureAgreement(const Bytes &dataFile, const AgreementRow &row,
                                  const std::vector<std::u16string> &words) {
    const TableOrder table(dataFile, row.page, row.collation);
    const IcuOrder icu(row.collator);
    const bool noAccents = std::string_view(row.collation) == "noaccents";
    std::vector<std::u16string> written;
    std::vector<Key> texts;
    for (const std::u16string &word : words) {
        if (const auto text = table.encode(word)) {
            written.push_back(word);
            texts.push_back(*text);
        }
    }
    AgreementFigures figures;
    figures.words = texts.size();
    for (const bool sensitive : {true, false}) {
        const UCollationStrength strength = noAccents   ? UCOL_PRIMARY
                                            : sensitive ? UCOL_TERTIARY
                                                        : UCOL_SECONDARY;
        std::vector<Key> tableKeys;
        std::vector<Key> icuKeys;
        for (std::size_t i = 0; i < texts.size(); i++) {
            tableKeys.push_back(table.keyOf(texts[i], sensitive));
            icuKeys.push_back(icu.keyOf(written[i], strength, noAccents && sensitive));
        }
        (sensitive ? figures.sensitive : figures.insensitive) = compareKeys(tableKeys, icuKeys);
    }
    return figures;
}

std::string agreementLine(const AgreementRow &row, const AgreementFigures &figures) {
    char line[200];
    std::snprintf(line, sizeof line, "| %s | %s %s | %zu | %.2f / %.2f | %.2f / %.2f |", row.language,
                  row.page, row.collation, figures.words, figures.sensitive.anyTwo,
                  figures.insensitive.anyTwo, figures.sensitive.neighbours, figures.insensitive.neighbours);
    return line;
}

} // namespace velnls::nlsgen::test
