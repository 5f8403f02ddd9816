#include "collate/sort_exit.hpp"

#include "core/arena.hpp"
#include "platform/libraries.hpp"
#include "platform/path_list.hpp"
#include "platform/spin_scope.hpp"

#include <cstring>

namespace velnls {

namespace {

constexpr char kLibraryName[] = "usortwin";

// A handle's load, in its lent memory.
struct Load {
    SortExit exit;
    Load *older; // of any handle
};

Load *newest = nullptr; // its exit is the record in use
std::atomic_flag loadsInUse = ATOMIC_FLAG_INIT;

bool recordInUse(SortExit &exit) {
    const platform::SpinScope scope(loadsInUse);
    if (newest == nullptr)
        return false;
    exit = newest->exit;
    return true;
}

// The first file of the name in the directories of PATH decides. An empty directory is none: elsewhere it
// would stand for the current one.
void *loadFromPath() {
    platform::PathList directories(platform::environmentValue("PATH"));
    constexpr char kSeparator[] = {platform::kDirectorySeparator, '\0'};
    while (true) {
        platform::PathText path;
        if (!directories.next(path))
            return nullptr;
        if (path.isEmpty())
            continue;
        path << kSeparator << kLibraryName << platform::kLibraryEnding;
        if (path.get() != nullptr && platform::isFile(path.get()))
            return platform::loadLibrary(path.get());
    }
}

template <typename Entry>
void find(void *library, const char *name, Entry &entry) {
    void *const function = platform::findSymbol(library, name);
    std::memcpy(&entry, &function, sizeof entry);
}

// Finds the entry points and makes the exit ready.
bool start(SortExit &exit, const char *collationName) {
    find(exit.library, "UserSortInit", exit.init);
    find(exit.library, "UserSortTerm", exit.term);
    find(exit.library, "UserSortComp", exit.compare);
    find(exit.library, "UserSortCopy", exit.copy);
    return exit.compare != nullptr && exit.copy != nullptr &&
           (exit.init == nullptr || exit.init(collationName, &exit.user) == 0);
}

void stop(const SortExit &exit) {
    if (exit.term != nullptr)
        exit.term(exit.user);
    platform::unloadLibrary(exit.library);
}

// Where a text must be cut for someone who reads up to a NUL: null when it ends with its own.
std::uint8_t *cutOf(Text text) {
    if (text.end == terminatedText(text.at).end)
        return nullptr;
    const void *const nul = std::memchr(text.at, 0, static_cast<std::size_t>(text.end - text.at));
    return nul != nullptr ? nullptr : const_cast<std::uint8_t *>(text.end);
}

// A NUL in the caller's text for a scope.
class TemporaryNul {
public:
    explicit TemporaryNul(std::uint8_t *at) : at_(at != nullptr && *at != 0 ? at : nullptr) {
        if (at_ != nullptr) {
            kept_ = *at_;
            *at_ = 0;
        }
    }
    ~TemporaryNul() {
        if (at_ != nullptr)
            *at_ = kept_;
    }
    TemporaryNul(const TemporaryNul &) = delete;
    TemporaryNul &operator=(const TemporaryNul &) = delete;

private:
    std::uint8_t *at_;
    std::uint8_t kept_ = 0;
};

const char *chars(Text text) {
    return reinterpret_cast<const char *>(text.at);
}

} // namespace

nlsStatus loadSortExit(nlsHandle &handle, const char *collationName) {
    if (handle.sortExitLoaded != 0)
        return NLS_OK;
    SortExit exit{};
    exit.library = loadFromPath();
    if (exit.library == nullptr)
        return NLS_E_NOSORT;
    if (!start(exit, collationName)) {
        platform::unloadLibrary(exit.library);
        return NLS_E_NOSORT;
    }
    Load *load = nullptr;
    if (const nlsStatus status = allocate(handle, sizeof *load, 8, load); status != NLS_OK) {
        stop(exit);
        return status;
    }
    load->exit = exit;
    {
        const platform::SpinScope scope(loadsInUse);
        load->older = newest;
        newest = load;
    }
    handle.sortExit = &load->exit;
    handle.sortExitLoaded = 1;
    return NLS_OK;
}

void unloadSortExit(nlsHandle &handle) {
    if (handle.sortExitLoaded == 0)
        return;
    const auto *const load = reinterpret_cast<const Load *>(handle.sortExit);
    {
        const platform::SpinScope scope(loadsInUse);
        Load *kept = nullptr;
        for (Load *at = newest; at != nullptr && at != load; at = at->older)
            kept = at;
        (kept == nullptr ? newest : kept->older) = load->older;
    }
    const SortExit exit = load->exit;
    handle.sortExitLoaded = 0;
    handle.sortExit = nullptr;
    stop(exit);
}

nlsStatus compareByExit(const Collation &collation, Text a, Text b, unsigned mode, int &result) {
    SortExit exit{};
    if (!recordInUse(exit))
        return NLS_E_NOSORT;
    std::uint8_t *const cutA = cutOf(a);
    std::uint8_t *const cutB = cutOf(b);
    const TemporaryNul nulA(cutA);
    const TemporaryNul nulB(cutB); // restored first: both may be one byte
    result = static_cast<std::int16_t>(exit.compare(chars(a), chars(b), collation.caseInsensitive,
                                                    collation.caseSensitive, mode, exit.user));
    return NLS_OK;
}

nlsStatus writeExitKey(const Collation &collation, Text text, unsigned mode, std::uint8_t *key,
                       std::size_t size) {
    SortExit exit{};
    if (!recordInUse(exit))
        return NLS_E_NOSORT;
    const TemporaryNul nul(cutOf(text));
    exit.copy(key, chars(text), static_cast<std::uint32_t>(size), collation.caseInsensitive,
              collation.caseSensitive, mode, exit.user);
    return NLS_OK;
}

} // namespace velnls
