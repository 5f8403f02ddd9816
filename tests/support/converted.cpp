#include "converted.hpp"

#include "guarded_buffer.hpp"

#include <algorithm>
#include <memory>

namespace fixture {

namespace {

// The buffers are kept between calls; they grow as needed.
GuardedBuffer &area(std::size_t which, std::size_t size) {
    static std::unique_ptr<GuardedBuffer> areas[3];
    static std::size_t sizes[3];
    if (!areas[which] || sizes[which] < size) {
        sizes[which] = std::max<std::size_t>(2 * size, 65536);
        areas[which] = std::make_unique<GuardedBuffer>(sizes[which]);
    }
    return *areas[which];
}

const unsigned char *sourceOf(const Bytes &source) {
    Bytes terminated = source;
    terminated.push_back(0);
    return area(0, terminated.size()).readOnly(terminated);
}

nlsStr stringOf(const unsigned char *buffer, std::size_t size, std::size_t length) {
    // The interface has no const text record; sources stay unwritten all the same.
    char *const text = reinterpret_cast<char *>(reinterpret_cast<std::uintptr_t>(buffer));
    return {text, static_cast<std::uint32_t>(size), static_cast<std::uint32_t>(length)};
}

unsigned char *destinationOf(std::uint32_t capacity) {
    unsigned char *const out = area(1, capacity).tail(capacity);
    std::fill_n(out, capacity, kFiller);
    return out;
}

} // namespace

Bytes Converted::text() const {
    if (written > destination.size())
        return {};
    return {destination.begin(), destination.begin() + written};
}

Converted convert(nlsConversion *conversion, const Bytes &source, std::uint32_t capacity) {
    unsigned char *const out = destinationOf(capacity);
    nlsStr destination = stringOf(out, capacity, kNotWritten);
    Converted result;
    result.status = nlsConvertFromUCS2(conversion, sourceOf(source),
                                       static_cast<std::uint32_t>(source.size()), &destination);
    result.written = destination.length;
    result.destination.assign(out, out + capacity);
    return result;
}

Converted convertCheck(nlsConversion *conversion, const Bytes &source, std::uint32_t capacity) {
    unsigned char *const out = destinationOf(capacity);
    nlsStr destination = stringOf(out, capacity, kNotWritten);
    const nlsStr text = stringOf(sourceOf(source), source.size() + 1, source.size());
    Converted result;
    result.status = nlsConvertNLSCheck(conversion, &text, &destination);
    result.written = destination.length;
    result.destination.assign(out, out + capacity);
    return result;
}

Converted convertText(nlsConversion *conversion, const Bytes &source, std::uint32_t capacity,
                      std::uint32_t intermediate) {
    unsigned char *const out = destinationOf(capacity);
    nlsStr destination = stringOf(out, capacity, 0);
    nlsStr between = stringOf(area(2, intermediate).tail(intermediate), intermediate, 0);
    const nlsStr text = stringOf(sourceOf(source), source.size() + 1, source.size());
    Converted result;
    result.status = nlsConvertNLS(conversion, &text, intermediate == 0 ? nullptr : &between, &destination);
    result.written = destination.length;
    result.destination.assign(out, out + capacity);
    return result;
}

Converted convertWithTerminator(nlsConversion *conversion, const Bytes &source, std::uint32_t capacity) {
    unsigned char *const out = destinationOf(capacity);
    const nlsStr text = stringOf(sourceOf(source), source.size() + 1, source.size());
    Converted result;
    result.status = nlsConvertToUCS2(conversion, &text, capacity, out, &result.written);
    result.destination.assign(out, out + capacity);
    return result;
}

std::string hex(const Bytes &bytes) {
    static const char digits[] = "0123456789ABCDEF";
    std::string out;
    for (const unsigned char b : bytes) {
        out += digits[b >> 4];
        out += digits[b & 15];
        out += ' ';
    }
    return out;
}

testing::AssertionResult agree(const Converted &expected, const Converted &actual) {
    if (expected.status != actual.status)
        return testing::AssertionFailure()
               << "status " << static_cast<std::int32_t>(actual.status) << " instead of "
               << static_cast<std::int32_t>(expected.status) << ", wrote " << hex(actual.text());
    if (expected.written != kNotWritten &&
        (expected.written != actual.written || expected.text() != actual.text())) {
        if (expected.written > 400)
            return testing::AssertionFailure() << "long outputs differ";
        return testing::AssertionFailure()
               << "wrote " << actual.written << " bytes " << hex(actual.text()) << "instead of "
               << expected.written << " bytes " << hex(expected.text()) << "(status "
               << static_cast<std::int32_t>(actual.status) << ")";
    }
    return testing::AssertionSuccess();
}

} // namespace fixture
