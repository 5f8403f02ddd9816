#include "collate/record_list.hpp"

#include <atomic>

namespace velnls {

namespace {

Collation *head = nullptr;
std::atomic_flag listInUse = ATOMIC_FLAG_INIT;

// Held for a few pointer writes only, never over a call out of this file.
class ListScope {
public:
    ListScope() {
        while (listInUse.test_and_set(std::memory_order_acquire)) {
        }
    }
    ~ListScope() {
        listInUse.clear(std::memory_order_release);
    }
    ListScope(const ListScope &) = delete;
    ListScope &operator=(const ListScope &) = delete;
};

template <typename Test>
void unlinkIf(Test test) {
    const ListScope scope;
    Collation *kept = nullptr;
    for (Collation *record = head; record != nullptr; record = record->next) {
        if (!test(record))
            kept = record;
        else if (kept == nullptr)
            head = record->next;
        else
            kept->next = record->next;
    }
}

bool liesIn(const Block &block, const void *address) {
    const auto offset =
        reinterpret_cast<std::uintptr_t>(address) - reinterpret_cast<std::uintptr_t>(block.base);
    return offset < block.size;
}

} // namespace

void pushCollation(Collation &record) {
    const ListScope scope;
    record.next = head;
    head = &record;
}

void forgetCollationsOf(const nlsHandle &handle) {
    unlinkIf([&handle](const Collation *record) {
        for (const Block *block = handle.block; block != nullptr; block = block->previousBlock) {
            if (liesIn(*block, record))
                return true;
        }
        return false;
    });
}

void forgetCollation(const Collation &record) {
    unlinkIf([&record](const Collation *other) { return other == &record; });
}

} // namespace velnls
