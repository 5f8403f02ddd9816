// Texts for differential tests: plain runs, real sentences, one special piece among ordinary characters,
// random mixes and damaged ones, in any encoding the model knows.
#pragma once

#include "compare.hpp"
#include "random.hpp"

namespace harness {

class TextMaker {
public:
    explicit TextMaker(const model::Conversion &conversion);

    // Ordinary characters of the source, ASCII and those of the page's own script.
    [[nodiscard]] const std::vector<Bytes> &asciiCharacters() const {
        return ascii_;
    }
    [[nodiscard]] const std::vector<Bytes> &scriptCharacters() const {
        return script_;
    }
    // Pieces that converters treat in a special way: unmapped, broken, overlong, out of pair, cut.
    [[nodiscard]] const std::vector<Bytes> &specials() const {
        return specials_;
    }

    // The sample sentences that the source can spell.
    [[nodiscard]] const std::vector<Bytes> &sentences() const {
        return sentences_;
    }

    // A random mix of about `size` bytes, damaged more often than not.
    Bytes mix(Random &random, std::size_t size) const;

private:
    void addScript();
    void addSpecials();
    void addSentences();
    void addCharacter(std::vector<Bytes> &list, std::uint32_t codePoint) const;

    const model::Conversion &conversion_;
    std::vector<Bytes> ascii_;
    std::vector<Bytes> script_;
    std::vector<Bytes> specials_;
    std::vector<Bytes> sentences_;
};

} // namespace harness
