#include "guarded_buffer.hpp"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <stdexcept>
#include <sys/mman.h>
#include <unistd.h>

namespace fixture {

namespace {

std::size_t pageSize() {
    static const auto size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return size;
}

constexpr unsigned char kRubbish = 0xCC;

} // namespace

GuardedBuffer::GuardedBuffer(std::size_t capacity)
    : inner_((std::max<std::size_t>(capacity, 1) + pageSize() - 1) / pageSize() * pageSize()) {
    void *const all = mmap(nullptr, inner_ + 2 * pageSize(), PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (all == MAP_FAILED)
        throw std::bad_alloc();
    pages_ = static_cast<unsigned char *>(all);
    if (mprotect(pages_ + pageSize(), inner_, PROT_READ | PROT_WRITE) != 0)
        throw std::bad_alloc();
}

GuardedBuffer::~GuardedBuffer() {
    munmap(pages_, inner_ + 2 * pageSize());
}

void GuardedBuffer::writable(bool yes) {
    if (writable_ == yes)
        return;
    if (mprotect(pages_ + pageSize(), inner_, yes ? PROT_READ | PROT_WRITE : PROT_READ) != 0)
        throw std::runtime_error("mprotect");
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
