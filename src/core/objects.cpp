#include "core/objects.hpp"

namespace velnls {

void pushObject(nlsHandle &handle, ObjectHeader &object, ObjectType type) {
    ObjectHeader *const head = handle.newest;
    head->previous = &object;
    object.next = head;
    object.serial = static_cast<std::uint16_t>(head->serial + 1);
    object.type = type;
    handle.newest = &object;
}

void unlinkObject(nlsHandle &handle, ObjectHeader &object) {
    if (handle.newest == &object)
        handle.newest = object.next;
    else
        object.previous->next = object.next;
    if (object.next != nullptr)
        object.next->previous = object.previous;
}

} // namespace velnls
