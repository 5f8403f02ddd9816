// velnls case: text in upper or lower case.
#include "commands.hpp"

#include <cstdint>
#include <cstdio>
#include <span>
#include <vector>

#include "checked_input.hpp"
#include "line_reader.hpp"
#include "ordered_page.hpp"
#include "output.hpp"
#include "scan.hpp"

namespace velnls::tool {

namespace {

// Maps stretches of whole characters. The library's calls end at a NUL and make "?" of the longest
// characters, so these go around it; they have no other case.
class CaseMapper {
public:
    CaseMapper(const Page &page, nlsLocale *locale, bool upper)
        : page_(page), locale_(locale), upper_(upper), longest_(page.form == Form::Utf8         ? 3
                                                                : page.form == Form::SingleByte ? 1
                                                                                                : 2) {}

    template <typename Out>
    void map(std::span<const unsigned char> stretch, Out &out) {
        std::size_t begin = 0;
        for (std::size_t at = 0; at < stretch.size();) {
            const std::size_t length =
                stretch[at] < 0x80 && page_.plainAscii ? 1 : characterLength(page_, stretch.data() + at);
            if (stretch[at] != 0 && length <= longest_) {
                at += length;
                continue;
            }
            mapText(stretch.subspan(begin, at - begin), out);
            out.write(std::string_view(reinterpret_cast<const char *>(stretch.data()) + at, length));
            at += length;
            begin = at;
        }
        mapText(stretch.subspan(begin), out);
    }

private:
    template <typename Out>
    void mapText(std::span<const unsigned char> text, Out &out) {
        if (text.empty()) {
            return;
        }
        source_.assign(text.begin(), text.end());
        source_.push_back('\0');
        // No character grows to more than three bytes, and the end needs one.
        result_.resize(text.size() * 3 + 2);
        const nlsStr source = {source_.data(), static_cast<std::uint32_t>(source_.size()),
                               static_cast<std::uint32_t>(text.size())};
        nlsStr result = {result_.data(), static_cast<std::uint32_t>(result_.size() - 1), 0};
        const nlsStatus status =
            upper_ ? nlsUpperCase(locale_, &source, &result) : nlsLowerCase(locale_, &source, &result);
        if (status != NLS_OK) {
            throw StatusError("mapping letter case", status);
        }
        out.write(std::string_view(result.buffer, result.length));
    }

    const Page &page_;
    nlsLocale *locale_;
    bool upper_;
    std::size_t longest_; // bytes of the longest characters that the library maps or keeps
    std::vector<char> source_;
    std::vector<char> result_;
};

} // namespace

int runCase(const CaseOptions &options) {
    const DataSource data(options.data);
    Library library(data);
    const Page page = describeWalkedPage(library, options.page);
    const std::string table =
        resolveName(Library::list(page.locale, NameList::CaseTables), options.table, page.name, "case table");
    CaseMapper mapper(page, library.locale(page.name, "basic", table), options.upper);
    const std::vector<std::string> files = namedInputs(options.files);
    Output output(options.output);
    Gathered out(output);
    for (const std::string &file : files) {
        CheckedInput input(file, page);
        output.refuse(input.input());
        for (auto stretch = input.next(); !stretch.empty(); stretch = input.next()) {
            mapper.map(stretch, out);
        }
        if (input.fault()) {
            out.flush();
            std::fprintf(stderr, "%s\n", input.fault()->c_str());
            return kExitMalformed;
        }
    }
    out.flush();
    output.commit();
    return kExitDone;
}

} // namespace velnls::tool
