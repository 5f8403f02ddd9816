// The table of status numbers and their words.
#include "status.hpp"

#include <cstdint>

namespace velnls::tool {

namespace {

struct StatusWords {
    nlsStatus status;
    const char *words;
};

constexpr StatusWords kStatusWords[] = {
    {NLS_OK, "success"},
    {NLS_E_NOMEM, "the memory lent to the library is used up"},
    {NLS_E_BUFFER, "a buffer is too small"},
    {NLS_E_READ, "the directory of the data file is cut short or names a table without a place"},
    {NLS_E_MAGIC, "not an NLS data file: it does not begin with the number 4242"},
    {NLS_E_VERSION, "the version of the data file is neither 4 nor 5"},
    {NLS_E_NOSJIS, "the collation needs the code page SHIFT-JIS"},
    {NLS_E_ICU, "there is no way between the two code pages, or ICU could not do it"},
    {NLS_E_NOCHARSET, "no such code page"},
    {NLS_E_NOCOLLATION, "no such collation"},
    {NLS_E_NOCASETABLE, "no such case table"},
    {NLS_E_BADID, "no such property"},
    {NLS_E_HANDLE, "the library's handle is closed"},
    {NLS_E_NULLARG, "the text or an argument is not valid"},
    {NLS_E_BADCHAR, "not a character of the code page"},
    {NLS_E_ICULOAD, "ICU could not be loaded, or lacks the language"},
    {NLS_E_CONVSTATE, "the Unicode text could not be converted"},
    {NLS_E_END, "the end of the text was reached"},
    {NLS_E_TABLE, "a table of the data file is cut short or malformed"},
    {NLS_E_BADTABLE, "a table of the data file contradicts itself"},
    {NLS_E_BUSY, "the library is busy"},
    {NLS_E_NOTLOCALE, "not a locale"},
    {NLS_E_NOSORT, "no usable collation"},
    {NLS_E_NOTCONV, "not a conversion"},
    {NLS_E_NOCHARTAB, "the locale has no character table"},
    {NLS_E_OSLOCALE, "the system names no code page"},
    {NLS_E_NOSORTTAB, "the locale has no sort table"},
    {NLS_E_SURROGATE, "a surrogate stands out of pair"},
    {NLS_R_CHANGED, "the text was changed"},
    {NLS_R_SUBSTITUTED, "characters were substituted"},
    {NLS_R_CUT, "the text ends inside a character"},
};

} // namespace

const char *statusWords(nlsStatus status) {
    for (const StatusWords &entry : kStatusWords) {
        if (entry.status == status) {
            return entry.words;
        }
    }
    return "unknown status";
}

StatusError::StatusError(const std::string &action, nlsStatus status)
    : std::runtime_error(action + ": " + statusWords(status) + " (status " +
                         std::to_string(static_cast<std::int32_t>(status)) + ")"),
      status_(status) {}

} // namespace velnls::tool
