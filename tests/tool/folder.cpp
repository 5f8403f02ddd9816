// Files for one test.
#include "process.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

namespace velnls::tool {

Folder::Folder() {
    std::random_device random;
    do {
        path_ =
            (std::filesystem::temp_directory_path() / ("velnls-test." + std::to_string(random()))).string();
    } while (!std::filesystem::create_directory(path_));
}

Folder::~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string Folder::write(const std::string &name, std::string_view content) const {
    std::ofstream(path(name), std::ios::binary) << content;
    return path(name);
}

std::vector<std::string> Folder::names() const {
    std::vector<std::string> found;
    for (const auto &entry : std::filesystem::directory_iterator(path_)) {
        found.push_back(entry.path().filename().string());
    }
    std::sort(found.begin(), found.end());
    return found;
}

std::string readFile(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

std::string repeat(std::string_view text, std::size_t count) {
    std::string result;
    for (std::size_t i = 0; i < count; ++i) {
        result += text;
    }
    return result;
}

} // namespace velnls::tool
