// velnls words: the words of text, one a line.
#include "commands.hpp"

#include "line_reader.hpp"
#include "ordered_page.hpp"
#include "output.hpp"
#include "word_walker.hpp"

namespace velnls::tool {

int runWords(const WordsOptions &options) {
    const DataSource data(options.data);
    Library library(data);
    const Page page = describeWalkedPage(library, options.page);
    WordWalker walker(library, page);
    const std::vector<std::string> files = namedInputs(options.files);
    Output output("");
    Gathered out(output);
    const char lineFeed = static_cast<char>(page.lineFeed);
    for (const std::string &file : files) {
        LineReader reader(file, page.lineFeed);
        output.refuse(reader.input());
        while (const auto line = reader.next()) {
            walker.start(*line);
            while (const auto word = walker.next()) {
                out.write(*word);
                out.write(lineFeed);
            }
        }
    }
    out.flush();
    return kExitDone;
}

} // namespace velnls::tool
