#include "guarded_buffer.hpp"

#include "pages.hpp"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace fixture {

namespace {

constexpr unsigned char kRubbish = 0xCC;

} // namespace

GuardedBuffer::GuardedBuffer(std::size_t capacity)
    : inner_((std::max<std::size_t>(capacity, 1) + pageSize() - 1) / pageSize() * pageSize()) {
    pages_ = reservePages(inner_ + 2 * pageSize());
    setAccess(pages_ + pageSize(), inner_, Access::kReadWrite);
}

GuardedBuffer::~GuardedBuffer() {
    releasePages(pages_, inner_ + 2 * pageSize());
}

void GuardedBuffer::writable(bool yes) {
    if (writable_ == yes)
        return;
    setAccess(pages_ + pageSize(), inner_, yes ? Access::kReadWrite : Access::kRead);
    writable_ = yes;
}

unsigned char *GuardedBuffer::tail(std::size_t size) {
    if (size > inner_)
        throw std::length_error("guarded buffer");
    writable(true);
    return pages_ + pageSize() + inner_ - size;
}

unsigned char *GuardedBuffer::head(std::size_t size) {
    if (size > inner_)
        throw std::length_error("guarded buffer");
    writable(true);
    return pages_ + pageSize();
}

const unsigned char *GuardedBuffer::readOnly(const Bytes &bytes) {
    unsigned char *const at = tail(bytes.size());
    std::copy(bytes.begin(), bytes.end(), at);
    writable(false);
    return at;
}

LentMemory::LentMemory(std::size_t size, std::size_t misalignment)
    : buffer_(size + 32), size_(static_cast<std::int32_t>(size)) {
    unsigned char *const end = buffer_.tail(0);
    slack_ = (reinterpret_cast<std::uintptr_t>(end) - size - misalignment) % 16;
    data_ = end - slack_ - size;
    std::memset(data_, kRubbish, size + slack_);
}

bool LentMemory::intact() const {
    const unsigned char *const end = data_ + size_;
    return std::all_of(end, end + slack_, [](unsigned char b) { return b == kRubbish; });
}

} // namespace fixture
