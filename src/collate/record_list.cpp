#include "collate/record_list.hpp"

#include "platform/spin_scope.hpp"

namespace velnls {

namespace {

Collation *head = nullptr;
std::atomic_flag listInUse = ATOMIC_FLAG_INIT;

// The flag is held for a few pointer writes only, never over a call out of this file.
template <typename Test>
Collation *unlinkIf(Test test) {
    const platform::SpinScope scope(listInUse);
    Collation *kept = nullptr;
    Collation *unlinked = nullptr;
    for (Collation *record = head; record != nullptr;) {
        Collation *const next = record->next;
        if (!test(record)) {
            kept = record;
        } else {
            (kept == nullptr ? head : kept->next) = next;
            record->next = unlinked;
            unlinked = record;
        }
        record = next;
    }
    return unlinked;
}

bool liesIn(const Block &block, const void *address) {
    const auto offset =
        reinterpret_cast<std::uintptr_t>(address) - reinterpret_cast<std::uintptr_t>(block.base);
    return offset < block.size;
}

} // namespace

bool liesInLentMemory(const nlsHandle &handle, const void *address) {
    for (const Block *block = handle.block; block != nullptr; block = block->previousBlock) {
        if (liesIn(*block, address))
            return true;
    }
    return false;
}

void pushCollation(Collation &record) {
    const platform::SpinScope scope(listInUse);
    record.next = head;
    head = &record;
}

Collation *forgetCollationsOf(const nlsHandle &handle) {
    return unlinkIf([&handle](const Collation *record) { return liesInLentMemory(handle, record); });
}

void forgetCollation(const Collation &record) {
    unlinkIf([&record](const Collation *other) { return other == &record; });
}

} // namespace velnls
