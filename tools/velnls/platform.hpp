// What systems do differently about files, terminals and programs. Paths are UTF-8 on Windows and bytes
// elsewhere. Files are the numbers that POSIX calls descriptors; failures are told as POSIX does, by a
// negative result or false and by errno.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace velnls::tool::platform {

inline constexpr int kStandardInput = 0;
inline constexpr int kStandardOutput = 1;
inline constexpr int kStandardError = 2;

// ---- The program ----------------------------------------------------------------------------------------

// The words of the command line, the program's name first. From here on the standard streams carry bytes as
// they are, and terminals show UTF-8.
std::vector<std::string> startProgram(int argc, char **argv);

bool isTerminal(int file);

// Where temporary files go unless the user says otherwise.
std::string temporaryFolder();

// ---- Files ----------------------------------------------------------------------------------------------

struct FileFacts {
    bool regular = false;
    std::uint64_t size = 0;
    std::array<std::uint64_t, 3> identity{}; // of an open file, whatever its path
    unsigned mode = 0;                       // access rights; 0 where the system has others
};

bool factsOf(const std::string &path, FileFacts &facts);
bool factsOf(int file, FileFacts &facts);
bool isReadable(const std::string &path);
bool isWritable(const std::string &path);

// For reading from front to back.
int openToRead(const std::string &path);
// A file that exists, such as a device or a named pipe.
int openToWrite(const std::string &path);
// Makes a file of a new name, which is `path` and an ending; `path` becomes that name.
int openTemporary(std::string &path);
// Makes a file to write and read that is gone when it is closed, also when the program is ended by force.
int openNameless(const std::string &folder);
bool closeFile(int file);

// Up to `size` bytes; 0 at the end, -1 on failure. Interruptions are no failures.
long long readFile(int file, void *buffer, std::size_t size);
long long writeFile(int file, const void *bytes, std::size_t size);
// To the front of a file.
bool rewindFile(int file);

// The rights of a file that is to replace the one with these facts, or of a new one when null. What does not
// work is let be: a file with other rights is still a good file.
void setRights(int file, const FileFacts *replaced);

// The path with symbolic links followed, so that a link stays a link when its target is replaced.
std::string followLinks(const std::string &path);
// Gives a file the name of another, which is gone then.
bool renameOver(const std::string &from, const std::string &to);
void removeFile(const std::string &path);

// Removes the file when the program is interrupted; an empty path ends that. One file at a time.
void removeOnInterrupt(const std::string &path);

} // namespace velnls::tool::platform
