// Starts processes with their streams in files, so that no pipe can fill up.
#include "process.hpp"

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace velnls::tool {

namespace {

Result run(const std::string &program, const std::vector<std::string> &arguments, std::string_view input) {
    const Folder folder;
    const std::string in = folder.write("in", input);
    const std::string out = folder.write("out", "");
    const std::string err = folder.write("err", "");
    std::vector<char *> words;
    std::string name = program;
    words.push_back(name.data());
    std::vector<std::string> copies = arguments;
    for (std::string &argument : copies) {
        words.push_back(argument.data());
    }
    words.push_back(nullptr);
    const pid_t child = ::fork();
    if (child < 0) {
        throw std::runtime_error("cannot start a process");
    }
    if (child == 0) {
        ::dup2(::open(in.c_str(), O_RDONLY), STDIN_FILENO);
        ::dup2(::open(out.c_str(), O_WRONLY), STDOUT_FILENO);
        ::dup2(::open(err.c_str(), O_WRONLY), STDERR_FILENO);
        ::setenv("VELNLS", VELNLS_TOOL, 1);
        ::execv(program.c_str(), words.data());
        ::_exit(127);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readFile(out), readFile(err)};
}

} // namespace

Result runTool(const std::vector<std::string> &arguments, std::string_view input) {
    return run(VELNLS_TOOL, arguments, input);
}

Result runShell(const std::string &command) {
    return run("/bin/sh", {"-c", command}, {});
}

Folder::Folder() {
    std::string name = std::filesystem::temp_directory_path() / "velnls-test.XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("cannot make a folder");
    }
    path_ = name;
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
        found.push_back(entry.path().filename());
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
