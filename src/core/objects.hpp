// The handle's object list, its busy flag, and the checks that every export begins with.
#pragma once

#include "core/handle.hpp"

namespace velnls {

// Puts a new object at the head of the list and makes it live.
void pushObject(nlsHandle &handle, ObjectHeader &object, ObjectType type);

// Takes an object off the list. Its type stays.
void unlinkObject(nlsHandle &handle, ObjectHeader &object);

// A reference where there is one in any case: every locale has its handle, closed or not.
inline bool isLive(const nlsHandle &handle) {
    return handle.header.type == kHandleObject;
}
inline bool isLive(const nlsHandle *handle) {
    return handle != nullptr && isLive(*handle);
}

// Holds the handle's busy flag for a scope. Refused while another operation holds it.
class BusyScope {
public:
    explicit BusyScope(nlsHandle &handle) : handle_(handle), held_(handle.busy == 0) {
        if (held_)
            handle.busy = 1;
    }
    ~BusyScope() {
        if (held_)
            handle_.busy = 0;
    }
    BusyScope(const BusyScope &) = delete;
    BusyScope &operator=(const BusyScope &) = delete;

    [[nodiscard]] bool held() const {
        return held_;
    }

    // Lets nested operations of the library take the flag themselves.
    void release() {
        handle_.busy = 0;
        held_ = false;
    }

private:
    nlsHandle &handle_;
    bool held_;
};

// Lets go of a busy flag that the caller holds, for a scope in which nested operations take it themselves.
class BusyPause {
public:
    explicit BusyPause(nlsHandle &handle) : handle_(handle) {
        handle.busy = 0;
    }
    ~BusyPause() {
        handle_.busy = 1;
    }
    BusyPause(const BusyPause &) = delete;
    BusyPause &operator=(const BusyPause &) = delete;

private:
    nlsHandle &handle_;
};

} // namespace velnls
