#include "collate/words.hpp"

namespace velnls {

namespace {

void append(Word &word, std::uint8_t byte) {
    if (word.length < kLongestWord)
        word.bytes[word.length++] = byte;
    else
        word.cut = true;
}

// Copies up to `count` bytes, not beyond the NUL; gives the place behind them.
const std::uint8_t *take(Word &word, const std::uint8_t *text, unsigned count) {
    for (; count > 0 && *text != 0; --count)
        append(word, *text++);
    return text;
}

// A joiner is kept only in front of a byte of the class that it joins to.
bool joins(std::uint8_t joiner, std::uint8_t next) {
    return (next == 3 && (joiner == 6 || joiner == 7)) || (next == 2 && (joiner == 5 || joiner == 7));
}

} // namespace

const std::uint8_t *nextWord(const WordRules &rules, const std::uint8_t *text, Word &word) {
    word.length = 0;
    word.cut = false;
    bool done = false;
    while (!done && *text != 0) {
        const std::uint8_t kind = rules.classes[*text];
        const bool begun = word.length != 0;
        switch (kind) {
        case 1:
            done = begun;
            if (!done)
                ++text;
            break;
        case 2:
        case 3:
        case 4:
            append(word, *text++);
            break;
        case 5:
        case 6:
        case 7:
            if (text[1] != 0 && joins(kind, rules.classes[text[1]])) {
                append(word, *text++);
            } else {
                ++text;
                done = begun;
            }
            break;
        case 9:
            if (!rules.endAtTwoByte) {
                text = take(word, text, 2);
                break;
            }
            if (!begun)
                text = take(word, text, 2);
            done = true;
            break;
        case 10:
            if (!begun)
                text = take(word, text, 3);
            done = true;
            break;
        case 11:
            if (!rules.endAtMark) {
                text = take(word, text, 2);
                break;
            }
            if (!begun)
                text = take(word, text, 4);
            done = true;
            break;
        default:
            ++text;
            break;
        }
    }
    word.bytes[word.length] = 0;
    return text;
}

} // namespace velnls
