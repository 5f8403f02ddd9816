#include "icu/kept_collators.hpp"

#include "collate/record_list.hpp"
#include "core/arena.hpp"
#include "icu/collate.hpp"
#include "platform/spin_scope.hpp"

namespace velnls::icu {

namespace {

struct Note {
    Collator *collator; // null: free
    Note *older;        // of any handle
};

Note *newest = nullptr;
std::atomic_flag notesInUse = ATOMIC_FLAG_INIT;

// A free note of the handle's. Nobody else takes it: a handle's changes are not shared between threads.
Note *findFree(const nlsHandle &handle) {
    const platform::SpinScope scope(notesInUse);
    for (Note *note = newest; note != nullptr; note = note->older) {
        if (note->collator == nullptr && liesInLentMemory(handle, note))
            return note;
    }
    return nullptr;
}

nlsStatus findRoom(nlsHandle &handle, Note *&note) {
    note = findFree(handle);
    if (note != nullptr)
        return NLS_OK;
    if (const nlsStatus status = allocate(handle, sizeof *note, 8, note); status != NLS_OK)
        return status;
    const platform::SpinScope scope(notesInUse);
    note->older = newest;
    newest = note;
    return NLS_OK;
}

} // namespace

nlsStatus openKeptCollator(nlsHandle &handle, Collation &record) {
    if (const nlsStatus status = openCollator(record); status != NLS_OK)
        return status;
    Note *note = nullptr;
    if (const nlsStatus status = findRoom(handle, note); status != NLS_OK) {
        closeCollator(record);
        return status;
    }
    note->collator = collatorOf(record);
    return NLS_OK;
}

void closeKeptCollator(nlsHandle &handle, Collation &record) {
    if (!isServed(record))
        return;
    {
        const platform::SpinScope scope(notesInUse);
        for (Note *note = newest; note != nullptr; note = note->older) {
            if (note->collator == collatorOf(record) && liesInLentMemory(handle, note))
                note->collator = nullptr;
        }
    }
    closeCollator(record);
}

void closeKeptCollatorsOf(nlsHandle &handle) {
    Note *own = nullptr;
    {
        const platform::SpinScope scope(notesInUse);
        Note **link = &newest;
        while (*link != nullptr) {
            Note *const note = *link;
            if (!liesInLentMemory(handle, note)) {
                link = &note->older;
                continue;
            }
            *link = note->older;
            note->older = own;
            own = note;
        }
    }
    for (; own != nullptr; own = own->older) {
        if (own->collator != nullptr)
            closeCollator(own->collator);
    }
}

} // namespace velnls::icu
