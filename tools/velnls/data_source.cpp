// Chooses between the built-in data file and one on disk.
#include "data_source.hpp"

extern "C" {
// Set by the assembler file that includes the data file.
extern const unsigned char velnlsDataBegin[];
extern const unsigned char velnlsDataEnd[];
}

namespace velnls::tool {

DataSource::DataSource(const std::string &path) {
    if (path.empty()) {
        name_ = "the built-in data file";
        bytes_ = {velnlsDataBegin, velnlsDataEnd};
        return;
    }
    name_ = path;
    file_ = std::make_unique<MappedFile>(path);
    bytes_ = file_->bytes();
}

} // namespace velnls::tool
