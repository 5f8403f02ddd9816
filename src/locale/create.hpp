// Creation of locales, shared by the export and by locales that need a companion.
#pragma once

#include "locale/locale.hpp"

namespace velnls {

nlsStatus createLocale(nlsHandle &handle, const char *codePageName, const char *collationName,
                       const char *caseTableName, nlsLocale *&out);

} // namespace velnls
