// Creation of conversion objects, shared by the export and by locales that need a companion.
#pragma once

#include "convert/converter.hpp"
#include "locale/locale.hpp"

namespace velnls {

// 0, or 23, or a status of the arena or of buildConverter. An existing conversion of the same names is
// shared.
nlsStatus createConversion(nlsHandle &handle, nlsLocale &source, nlsLocale &target, nlsConversion *&out);

} // namespace velnls
