// Plain character-by-character converters: the written rules, one step after the other, with no thought of
// speed. Source and destination may be the same memory, as in the single-character call.
#pragma once

#include "page.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace model {

enum class Form {
    kPage,
    kUtf8,
    kUtf16,
    kUtf32
};

struct Encoding {
    std::string name;
    Form form = Form::kPage;
    bool swapped = false;              // units in the other byte order
    const model::Page *page = nullptr; // of Form::kPage
};

// By the name in the data file's directory.
Encoding encoding(const std::string &name);

inline constexpr std::uint32_t kOk = 0;
inline constexpr std::uint32_t kTooSmall = 2;
inline constexpr std::uint32_t kInvalid = 16;
inline constexpr std::uint32_t kSurrogate = 33;
inline constexpr std::uint32_t kChanged = 0xFFFFFFFE;
inline constexpr std::uint32_t kSubstituted = 0xFFFFFFFD;

struct Buffer {
    std::uint8_t *data;
    std::uint32_t capacity;
};

struct Text {
    const std::uint8_t *data;
    std::uint32_t length;
    bool terminated = false; // the last byte is the string's terminator: nothing behind it may be read
};

struct Outcome {
    std::uint32_t status = 0;
    std::uint32_t written = 0;
};

// What one conversion of the library must do.
class Conversion {
public:
    Conversion(const std::string &source, const std::string &target);

    [[nodiscard]] bool isIdentity() const {
        return steps_.empty();
    }
    [[nodiscard]] bool isChain() const {
        return steps_.size() == 2;
    }
    [[nodiscard]] bool isByteTable() const {
        return steps_.size() == 1 && steps_[0].kind == Kind::kByteTable;
    }
    [[nodiscard]] std::uint32_t terminatorWidth() const;
    [[nodiscard]] const Encoding &source() const {
        return source_;
    }
    [[nodiscard]] const Encoding &target() const {
        return target_;
    }

    // One run without check mode; `written` of the outcome is `previous` where the run does not set it.
    [[nodiscard]] Outcome run(Text source, Buffer destination, Buffer intermediate,
                              std::uint32_t previous = 0) const;

    // The exported calls. Destination bytes are written exactly as the library must write them.
    [[nodiscard]] Outcome convert(Text source, Buffer destination, Buffer intermediate) const;
    [[nodiscard]] Outcome check(Text source, Buffer destination) const;
    [[nodiscard]] Outcome convertWithTerminator(Text source, Buffer destination) const;
    // `result` is left alone where the call does not set it.
    [[nodiscard]] std::uint32_t convertCharacter(std::uint32_t character, std::uint32_t &result) const;

private:
    enum class Kind {
        kByteTable,
        kShiftJisToEuc,
        kEucToShiftJis,
        kForms
    };
    struct Step {
        Kind kind;
        Encoding source;
        Encoding target;
    };
    static Step step(const Encoding &source, const Encoding &target);
    static Outcome runStep(const Step &step, Text source, Buffer destination, std::uint32_t previous);

    Encoding source_;
    Encoding target_;
    std::vector<Step> steps_;
};

// The bytes of one code point in an encoding form (surrogate values in the form they would have).
void appendEncoded(std::vector<std::uint8_t> &out, const Encoding &encoding, std::uint32_t codePoint);

} // namespace model
