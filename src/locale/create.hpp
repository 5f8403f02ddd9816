// Creation of locales, shared by the export and by locales that need a companion.
#pragma once

#include "locale/locale.hpp"

namespace velnls {

// Which existing locales serve: any, or only those that live as long as the handle. A locale that was rebuilt
// from a stored record goes with its caller's block.
enum class Serve {
    Any,
    Lasting
};

nlsStatus createLocale(nlsHandle &handle, const char *codePageName, const char *collationName,
                       const char *caseTableName, Serve serve, nlsLocale *&out);

// What the kernels may take for granted of a page: bits for a locale's proofs.
std::uint32_t provePage(const CharTable &table);

// For a code page that collates through Shift-JIS: creates that locale, with the same collation and case
// table, and the conversion to it. The handle is not busy.
nlsStatus createCompanion(nlsHandle &handle, nlsLocale &locale);

} // namespace velnls
