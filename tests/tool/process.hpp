// Runs the program as a user would, and keeps files for it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velnls::tool {

struct Result {
    int exitCode = -1; // -1 when a signal ended it
    std::string out;
    std::string err;
};

// Runs velnls with these arguments; "input" is its standard input.
Result runTool(const std::vector<std::string> &arguments, std::string_view input = {});

// The same through the shell, where "$VELNLS" is the program.
Result runShell(const std::string &command);

// Whether the program is a Windows build that runs here under Wine. Leave out what Windows does not have:
// access rights in three digits, devices and pipes with a place among the files, signals, arguments of any
// bytes, terminals of this system.
bool toolIsForWindows();
#define NEEDS_POSIX(what)                                                                                    \
    if (toolIsForWindows())                                                                                  \
    GTEST_SKIP() << what

// A folder that is there for one test.
class Folder {
public:
    Folder();
    ~Folder();
    Folder(const Folder &) = delete;
    Folder &operator=(const Folder &) = delete;

    std::string path(const std::string &name) const {
        return path_ + "/" + name;
    }
    // Writes a file and gives its path.
    std::string write(const std::string &name, std::string_view content) const;
    std::vector<std::string> names() const;

private:
    std::string path_;
};

std::string readFile(const std::string &path);

// "count" copies of "text", one after the other.
std::string repeat(std::string_view text, std::size_t count);

} // namespace velnls::tool

// A string with its NUL bytes kept.
#define BYTES(literal) std::string(literal, sizeof(literal) - 1)
