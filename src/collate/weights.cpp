#include "collate/weights.hpp"

#include "collate/weight_stream.hpp"

namespace velnls {

namespace {

// Steps of a page's own characters.
class PageSteps {
public:
    PageSteps(const WeightOrder &order, Text text) : order_(order), text_(text) {}
    [[nodiscard]] bool more() const {
        return hasPending_ || !text_.ended();
    }
    std::uint8_t take() {
        if (hasPending_) {
            hasPending_ = false;
            return pending_;
        }
        const std::uint8_t byte = *text_.at++;
        const std::uint8_t weight = order_.weights[byte];
        if (order_.chars->trailCount(byte) != 0) {
            if (!text_.ended())
                hold(*text_.at++);
            return weight;
        }
        if (weight != 0)
            return weight;
        hold(order_.expansion());
        return order_.expansion();
    }
    [[nodiscard]] Text rest() const {
        return text_;
    }

private:
    void hold(std::uint8_t weight) {
        pending_ = weight;
        hasPending_ = true;
    }
    const WeightOrder &order_;
    Text text_;
    std::uint8_t pending_ = 0;
    bool hasPending_ = false;
};

// Steps of the characters' Shift-JIS forms.
class ConvertedSteps {
public:
    ConvertedSteps(const WeightOrder &order, const ShiftJisWay &way, Text text)
        : order_(order), way_(way), text_(text) {}
    [[nodiscard]] bool more() const {
        return hasPending_ || !text_.ended();
    }
    std::uint8_t take() {
        if (hasPending_) {
            hasPending_ = false;
            return pending_;
        }
        const bool pair = order_.chars->trailCount(*text_.at) != 0;
        std::uint8_t bytes[2] = {};
        const unsigned count = takeAsShiftJis(*order_.chars, way_, text_, bytes);
        const std::uint8_t weight = order_.weights[bytes[0]];
        if (count == 2) {
            hold(bytes[1]);
            return weight;
        }
        if (weight != 0 || pair)
            return weight;
        hold(order_.expansion());
        return order_.expansion();
    }
    [[nodiscard]] Text rest() const {
        return text_;
    }

private:
    void hold(std::uint8_t weight) {
        pending_ = weight;
        hasPending_ = true;
    }
    const WeightOrder &order_;
    const ShiftJisWay &way_;
    Text text_;
    std::uint8_t pending_ = 0;
    bool hasPending_ = false;
};

class KeyWriter {
public:
    KeyWriter(std::uint8_t *key, std::size_t room) : at_(key), begin_(key), end_(key + room) {}
    void put(std::uint8_t byte) {
        if (at_ != end_)
            *at_++ = byte;
    }
    [[nodiscard]] bool full() const {
        return at_ == end_;
    }
    [[nodiscard]] std::size_t length() const {
        return static_cast<std::size_t>(at_ - begin_);
    }

private:
    std::uint8_t *at_;
    std::uint8_t *begin_;
    std::uint8_t *end_;
};

class PlainBytes {
public:
    explicit PlainBytes(Text text) : text_(text) {}
    [[nodiscard]] bool more() const {
        return !text_.ended();
    }
    std::uint8_t take() {
        return *text_.at++;
    }

private:
    Text text_;
};

template <typename Bytes>
std::size_t writeKey(Bytes bytes, const CharTable &chars, const WeightOrder &order, Expansion expansion,
                     std::uint8_t *key, std::size_t room) {
    const std::uint8_t expanded = expansion == Expansion::Literal ? std::uint8_t{'S'} : order.expansion();
    KeyWriter writer(key, room);
    while (bytes.more() && !writer.full()) {
        const std::uint8_t byte = bytes.take();
        const std::uint8_t weight = order.weights[byte];
        if (chars.trailCount(byte) != 0) {
            writer.put(weight);
            if (bytes.more())
                writer.put(bytes.take());
        } else if (weight == 0) {
            writer.put(expanded);
            writer.put(expanded);
        } else {
            writer.put(weight);
        }
    }
    return writer.length();
}

} // namespace

int compareByWeights(const WeightOrder &order, Text a, Text b) {
    return compareSteps(PageSteps(order, a), PageSteps(order, b));
}

int compareByByteWeightsOn(const WeightOrder &order, Text a, Text b) {
    while (!a.ended() && !b.ended()) {
        if (*a.at == *b.at) {
            const std::size_t alike = equalBytes(a, b);
            a.at += alike;
            b.at += alike;
            continue;
        }
        const unsigned weightA = order.weights[*a.at];
        const unsigned weightB = order.weights[*b.at];
        if (weightA == 0 || weightB == 0)
            return compareByWeights(order, a, b);
        if (weightA != weightB)
            return weightA < weightB ? -1 : 1;
        ++a.at;
        ++b.at;
    }
    return compareRests(a, b);
}

// Each step converts a character: the code around them is small rather than fast.
[[gnu::cold]] int compareThroughShiftJis(const WeightOrder &order, const ShiftJisWay &way, Text a, Text b) {
    return compareSteps(ConvertedSteps(order, way, a), ConvertedSteps(order, way, b));
}

std::size_t writeWeightKey(const WeightOrder &order, Expansion expansion, Text text, std::uint8_t *key,
                           std::size_t room) {
    return writeKey(PlainBytes(text), *order.chars, order, expansion, key, room);
}

[[gnu::cold]] std::size_t writeWeightKeyThroughShiftJis(const WeightOrder &order, const ShiftJisWay &way,
                                                        Expansion expansion, Text text, std::uint8_t *key,
                                                        std::size_t room) {
    return writeKey(ShiftJisBytes(*order.chars, way, text), *way.chars, order, expansion, key, room);
}

} // namespace velnls
