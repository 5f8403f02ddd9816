// See text_maker.hpp.
#include "text_maker.hpp"

#include "sample_texts.hpp"

#include <cstdlib>

namespace harness {
namespace {

using model::Encoding;
using model::Form;

Bytes bytesOfCode(std::uint32_t code) {
    if (code > 0xFF)
        return {static_cast<std::uint8_t>(code >> 8), static_cast<std::uint8_t>(code)};
    return {static_cast<std::uint8_t>(code)};
}

std::vector<std::uint32_t> codePointsOf(const std::string &utf8) {
    std::vector<std::uint32_t> values;
    for (std::size_t i = 0; i < utf8.size();) {
        const auto lead = static_cast<std::uint8_t>(utf8[i]);
        const unsigned length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        std::uint32_t value = length == 1 ? lead : lead & (0x7Fu >> length);
        for (unsigned k = 1; k < length; ++k)
            value = value * 64 + (static_cast<std::uint8_t>(utf8[i + k]) & 0x3F);
        values.push_back(value);
        i += length;
    }
    return values;
}

Bytes unitBytes(const Encoding &encoding, std::uint32_t value) {
    const unsigned width = encoding.form == Form::kUtf16 ? 2 : 4;
    Bytes bytes;
    for (unsigned i = 0; i < width; ++i)
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * (encoding.swapped ? width - 1 - i : i))));
    return bytes;
}

// The page whose script the text is in: the page of either side, else one that says nothing of its own.
const model::Page *scriptPage(const model::Conversion &conversion) {
    if (conversion.source().page != nullptr)
        return conversion.source().page;
    return conversion.target().page;
}

} // namespace

TextMaker::TextMaker(const model::Conversion &conversion) : conversion_(conversion) {
    for (std::uint32_t codePoint = 0x20; codePoint < 0x7F; ++codePoint)
        addCharacter(ascii_, codePoint);
    addScript();
    addSpecials();
    addSentences();
}

void TextMaker::addCharacter(std::vector<Bytes> &list, std::uint32_t codePoint) const {
    const Encoding &source = conversion_.source();
    if (source.form != Form::kPage) {
        Bytes bytes;
        model::appendEncoded(bytes, source, codePoint);
        list.push_back(bytes);
        return;
    }
    const std::uint32_t code = source.page->fromUnicode(codePoint);
    if (code != model::kNone)
        list.push_back(bytesOfCode(code));
}

void TextMaker::addScript() {
    const model::Page *const page = scriptPage(conversion_);
    static constexpr std::uint32_t kBlocks[][2] = {{0x4E00, 0x9FFF}, {0xAC00, 0xD7A3}, {0x3041, 0x30FE},
                                                   {0x0410, 0x044F}, {0x0391, 0x03C9}, {0x05D0, 0x05EA},
                                                   {0x0621, 0x064A}, {0x0E01, 0x0E5B}, {0x00C0, 0x017F}};
    for (const auto &block : kBlocks) {
        std::size_t taken = 0;
        const std::uint32_t step = (block[1] - block[0]) / 29 + 1;
        for (std::uint32_t codePoint = block[0]; codePoint <= block[1] && taken < 24; ++codePoint) {
            const bool known = page == nullptr || page->fromUnicode(codePoint) != model::kNone;
            if (!known || (codePoint - block[0]) % step != 0)
                continue;
            addCharacter(script_, codePoint);
            ++taken;
        }
        if (page != nullptr && !page->multibyte && script_.size() >= 20)
            break; // a single-byte page has one script beside Latin
    }
    if (script_.empty())
        script_ = ascii_;
}

void TextMaker::addSpecials() {
    const Encoding &source = conversion_.source();
    if (source.form == Form::kUtf8) {
        specials_ = {{0x00},
                     {0x7F},
                     {0xC3, 0xA9},
                     {0xD0, 0xBF},
                     {0xE2, 0x82, 0xAC},
                     {0xE4, 0xB8, 0xAD},
                     {0xEA, 0xB0, 0x80},
                     {0xEF, 0xBF, 0xBD},
                     {0xF0, 0x9F, 0x98, 0x80},
                     {0xF0, 0xA0, 0x82, 0x8A},
                     {0xC0, 0x80},
                     {0xC3},
                     {0xE2},
                     {0xE2, 0x82},
                     {0xED, 0xA0, 0x80},
                     {0xF0, 0x9F},
                     {0xF4, 0x90, 0x80, 0x80},
                     {0xF8, 0x88, 0x80, 0x80, 0x80},
                     {0xFF},
                     {0x80},
                     {0xBF, 0xBF}};
        return;
    }
    if (source.form != Form::kPage) {
        for (const std::uint32_t value :
             {0x00u, 0x7Fu, 0x80u, 0xE9u, 0x43Fu, 0x7FFu, 0x800u, 0x20ACu, 0x4E2Du, 0xAC00u, 0xD7FFu, 0xE000u,
              0xFFFDu, 0xFFFFu, 0xD800u, 0xDFFFu})
            specials_.push_back(unitBytes(source, value));
        for (const std::uint32_t value : {0x10000u, 0x1F600u, 0x20021u, 0x10FFFFu}) {
            specials_.emplace_back();
            model::appendEncoded(specials_.back(), source, value);
        }
        if (source.form == Form::kUtf32)
            for (const std::uint32_t value : {0x110000u, 0x200000u})
                specials_.push_back(unitBytes(source, value));
        return;
    }
    const model::Page &page = *source.page;
    specials_ = {{0x00}, {0x7F}, {0x80}, {0xA0}, {0xFF}};
    // One character for each length of its UTF-8 form, single-byte and double-byte, and unmapped ones.
    bool seen[2][6] = {};
    for (std::uint32_t code = 0x80; code < 0x10000; ++code) {
        const bool wide = code > 0xFF;
        if (wide ? page.trailCount[code >> 8] != 1 : page.trailCount[code] != 0)
            continue;
        const std::uint32_t unicode = page.unicodeOfCode[code];
        const unsigned length = unicode == model::kNone ? 0
                                : unicode < 0x80        ? 1
                                : unicode < 0x800       ? 2
                                : unicode < 0x10000     ? 3
                                                        : 4;
        if (seen[wide ? 1 : 0][length] || (wide && (code & 0xFF) < 0x21))
            continue;
        seen[wide ? 1 : 0][length] = true;
        specials_.push_back(bytesOfCode(code));
    }
    for (unsigned lead = 0x80; lead < 0x100; lead += 23) {
        if (page.trailCount[lead] == 0)
            continue;
        const auto byte = static_cast<std::uint8_t>(lead);
        specials_.push_back({byte});
        specials_.push_back({byte, 0x00});
        specials_.push_back({byte, 0x20});
        specials_.push_back({byte, 0xFF});
        specials_.push_back({byte, byte, byte});
    }
}

void TextMaker::addSentences() {
    const Encoding &source = conversion_.source();
    for (const std::string &text : sampleTexts()) {
        Bytes bytes;
        for (const std::uint32_t codePoint : codePointsOf(text)) {
            if (source.form != Form::kPage) {
                model::appendEncoded(bytes, source, codePoint);
                continue;
            }
            const std::uint32_t code = source.page->fromUnicode(codePoint);
            const Bytes character = bytesOfCode(code == model::kNone ? source.page->substitution : code);
            bytes.insert(bytes.end(), character.begin(), character.end());
        }
        sentences_.push_back(bytes);
    }
}

Bytes TextMaker::mix(Random &random, std::size_t size) const {
    const auto below = [&](std::size_t limit) { return random.below(static_cast<std::uint32_t>(limit)); };
    Bytes text;
    const auto append = [&](const Bytes &piece) { text.insert(text.end(), piece.begin(), piece.end()); };
    while (text.size() < size) {
        const std::size_t run = 1 + below(below(4) == 0 ? 70 : 12);
        switch (below(8)) {
        case 0:
        case 1:
        case 2:
            for (std::size_t i = 0; i < run; ++i)
                append(ascii_[below(ascii_.size())]);
            break;
        case 3:
        case 4:
            for (std::size_t i = 0; i < run; ++i)
                append(script_[below(script_.size())]);
            break;
        case 5: {
            const Bytes &sentence = sentences_[below(sentences_.size())];
            append(Bytes(sentence.begin(),
                         sentence.begin() + static_cast<std::ptrdiff_t>(below(sentence.size()))));
            break;
        }
        case 6:
            append(specials_[below(specials_.size())]);
            break;
        default:
            if (below(3) == 0)
                for (std::size_t i = 0; i < run; ++i)
                    text.push_back(static_cast<std::uint8_t>(random.next()));
            else
                append(specials_[below(specials_.size())]);
        }
    }
    text.resize(size);
    if (size > 0 && below(3) == 0)
        for (std::size_t i = 0; i <= below(4); ++i)
            text[below(size)] ^= static_cast<std::uint8_t>(1u << below(8));
    // A 32-bit value without a form of its own in the middle of a chain: not what chains are tested with.
    if (conversion_.isChain() && conversion_.source().form == Form::kUtf32)
        for (std::size_t i = 0; i + 4 <= size; i += 4)
            text[i + (conversion_.source().swapped ? 0 : 3)] &= 0x01;
    return text;
}

std::uint32_t seed() {
    const char *const text = std::getenv("VELNLS_TEST_SEED");
    return text == nullptr ? 20240229u : static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10));
}

} // namespace harness
