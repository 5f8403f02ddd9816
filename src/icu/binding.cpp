#include "icu/binding.hpp"

#include "platform/path_text.hpp"
#include "platform/spin_scope.hpp"

#include <atomic>
#include <cstddef>
#include <cstring>

namespace velnls::icu {

constinit Functions boundFunctions{};

namespace {

// Every function carries the number of the one ICU release that a build binds to; a build setting.
#define VERSIONED(name) name VELNLS_ICU_SUFFIX

// In the order of ConverterFunctions and CollatorFunctions, which is the order of the look-ups.
constexpr const char *kConverterNames[] = {
    VERSIONED("ucnv_open"),           VERSIONED("ucnv_close"),
    VERSIONED("ucnv_fromUnicode"),    VERSIONED("ucnv_toUnicode"),
    VERSIONED("ucnv_fromUChars"),     VERSIONED("ucnv_toUChars"),
    VERSIONED("ucnv_reset"),          VERSIONED("ucnv_resetFromUnicode"),
    VERSIONED("ucnv_resetToUnicode"), VERSIONED("ucnv_flushCache"),
};
constexpr const char *kCollatorNames[] = {
    VERSIONED("ucol_open"),         VERSIONED("ucol_getRules"), VERSIONED("ucol_getSortKey"),
    VERSIONED("ucol_setStrength"),  VERSIONED("ucol_strcoll"),  VERSIONED("ucol_countAvailable"),
    VERSIONED("ucol_getAvailable"), VERSIONED("ucol_close"),    VERSIONED("ucol_getVersion"),
};
static_assert(sizeof kConverterNames == sizeof(ConverterFunctions), "a name for each function");
static_assert(sizeof kCollatorNames == sizeof(CollatorFunctions), "a name for each function");

constexpr char kDataLibrary[] = "icudata-qmx";
constexpr char kCommonLibrary[] = "icuuc-qmx";
constexpr char kLanguageLibrary[] = "icui18n-qmx";

std::atomic<std::int32_t> reached{kUnbound};
std::atomic_flag binding = ATOMIC_FLAG_INIT;

// From the directory "bin" below BINPATHX; where that says nothing, the system's own search decides.
void *load(const char *name) {
    constexpr char kBin[] = {platform::kDirectorySeparator, 'b', 'i', 'n', platform::kDirectorySeparator, 0};
    const char *const home = platform::environmentValue("BINPATHX");
    platform::PathText path;
    if (home != nullptr && *home != '\0')
        path << home << kBin;
    path << name << platform::kLibraryEnding;
    return path.get() == nullptr ? nullptr : platform::loadLibrary(path.get());
}

// Fills a part of the table in order, up to the first name that the library lacks.
template <std::size_t count>
bool find(void *library, const char *const (&names)[count], void *functions) {
    auto *slot = static_cast<unsigned char *>(functions);
    for (const char *const name : names) {
        void *const function = platform::findSymbol(library, name);
        if (function == nullptr)
            return false;
        std::memcpy(slot, &function, sizeof function);
        slot += sizeof function;
    }
    return true;
}

bool bindConversion() {
    // The data library is loaded so that the others find their data.
    if (load(kDataLibrary) == nullptr)
        return false;
    void *const common = load(kCommonLibrary);
    return common != nullptr && find(common, kConverterNames, &boundFunctions.converters);
}

bool bindCollation() {
    void *const languages = load(kLanguageLibrary);
    return languages != nullptr && find(languages, kCollatorNames, &boundFunctions.collators);
}

} // namespace

Level level() {
    return static_cast<Level>(reached.load(std::memory_order_acquire));
}

nlsStatus bind(Level wanted) {
    if (level() >= wanted)
        return NLS_OK;
    const platform::SpinScope scope(binding);
    const Level now = level();
    if (now >= wanted) // by the thread that was waited for
        return NLS_OK;
    if (now < kConversion && !bindConversion())
        return NLS_E_ICULOAD;
    if (wanted == kCollation && !bindCollation())
        return NLS_E_ICULOAD;
    reached.store(wanted, std::memory_order_release);
    return NLS_OK;
}

} // namespace velnls::icu
