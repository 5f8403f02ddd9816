// Holds a process-wide flag for a scope: for words that threads with a handle each share.
#pragma once

#include "platform/libraries.hpp"

#include <atomic>

namespace velnls::platform {

class SpinScope {
public:
    explicit SpinScope(std::atomic_flag &flag) : flag_(flag) {
        while (flag_.test_and_set(std::memory_order_acquire))
            yieldThread();
    }
    ~SpinScope() {
        flag_.clear(std::memory_order_release);
    }
    SpinScope(const SpinScope &) = delete;
    SpinScope &operator=(const SpinScope &) = delete;

private:
    std::atomic_flag &flag_;
};

} // namespace velnls::platform
