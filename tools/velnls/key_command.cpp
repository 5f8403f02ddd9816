// velnls key: the sort keys of lines.
#include "commands.hpp"

#include <stdexcept>

#include "key_maker.hpp"
#include "line_reader.hpp"
#include "output.hpp"

namespace velnls::tool {

namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";

} // namespace

int runKey(const KeyOptions &options) {
    const OrderedPage page(options.order);
    const std::vector<std::string> files = namedInputs(options.files);
    Output output("");
    Gathered out(output);
    KeyMaker keys(page);
    std::string key;
    for (const std::string &file : files) {
        LineReader reader(file, page.page().lineFeed);
        output.refuse(reader.input());
        while (const auto line = reader.next()) {
            key.clear();
            try {
                keys.append(*line, key);
            } catch (const StatusError &error) {
                throw std::runtime_error(reader.place() + ": " + error.what());
            }
            if (options.raw) {
                KeyMaker::end(key);
                out.write(key);
                continue;
            }
            for (const char byte : key) {
                const auto value = static_cast<unsigned char>(byte);
                out.write(kHexDigits[value >> 4]);
                out.write(kHexDigits[value & 15]);
            }
            out.write('\n');
        }
    }
    out.flush();
    return kExitDone;
}

} // namespace velnls::tool
