// Starts processes with their streams in files, so that no pipe can fill up.
#include "process.hpp"

#include <cstdlib>
#include <fcntl.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace velnls::tool {

namespace {

// The one of this build, unless the environment names another, such as a Windows build under Wine.
const char *tool() {
    const char *const other = std::getenv("VELNLS_TOOL");
    return other != nullptr ? other : VELNLS_TOOL;
}

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
        ::setenv("VELNLS", tool(), 1);
        ::execv(program.c_str(), words.data());
        ::_exit(127);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readFile(out), readFile(err)};
}

} // namespace

Result runTool(const std::vector<std::string> &arguments, std::string_view input) {
    return run(tool(), arguments, input);
}

Result runShell(const std::string &command) {
    return run("/bin/sh", {"-c", command}, {});
}

bool toolIsForWindows() {
    const char *const system = std::getenv("VELNLS_TOOL_SYSTEM");
    return system != nullptr && std::string_view(system) == "windows";
}

} // namespace velnls::tool
