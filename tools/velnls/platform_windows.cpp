// Files, terminals and programs of Windows.
#include "platform.hpp"

#include "platform_windows.hpp"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <fcntl.h>
#include <io.h>
#include <mutex>
#include <string_view>

#include <shellapi.h>

namespace velnls::tool::platform {

namespace {

std::string narrow(std::wstring_view text) {
    const int size = static_cast<int>(text.size());
    std::string result(static_cast<std::size_t>(
                           WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr)),
                       '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), size, result.data(), static_cast<int>(result.size()),
                        nullptr, nullptr);
    return result;
}

// A descriptor for a handle, which it owns from here on.
int descriptorOf(HANDLE handle, int flags) {
    if (handle == INVALID_HANDLE_VALUE) {
        setErrno();
        return -1;
    }
    const int file =
        _open_osfhandle(reinterpret_cast<std::intptr_t>(handle), flags | _O_BINARY | _O_NOINHERIT);
    if (file < 0) {
        CloseHandle(handle);
    }
    return file;
}

HANDLE handleOf(int file) {
    return reinterpret_cast<HANDLE>(_get_osfhandle(file));
}

bool isFolder(const std::wstring &name) {
    const DWORD attributes = GetFileAttributesW(name.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool isPipe(const std::wstring &name) {
    return name.rfind(L"\\\\.\\pipe\\", 0) == 0;
}

// A file, folder or device.
HANDLE openExisting(const std::wstring &name, DWORD access) {
    const HANDLE handle =
        CreateFileW(name.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        setErrno();
    }
    return handle;
}

bool handleFacts(HANDLE handle, FileFacts &facts) {
    facts = {};
    if (handle == INVALID_HANDLE_VALUE) {
        errno = EBADF;
        return false;
    }
    if (GetFileType(handle) != FILE_TYPE_DISK) {
        return true;
    }
    FILE_STANDARD_INFO found = {};
    if (GetFileInformationByHandleEx(handle, FileStandardInfo, &found, sizeof found) == 0) {
        setErrno();
        return false;
    }
    facts.regular = found.Directory == 0;
    facts.size = static_cast<std::uint64_t>(found.EndOfFile.QuadPart);
    FILE_ID_INFO id = {};
    if (GetFileInformationByHandleEx(handle, FileIdInfo, &id, sizeof id) != 0) {
        static_assert(sizeof id.FileId == 2 * sizeof(std::uint64_t));
        facts.identity[0] = id.VolumeSerialNumber;
        std::memcpy(&facts.identity[1], &id.FileId, sizeof id.FileId);
    }
    return true;
}

// A new file `stem` + "." + six characters; `name` receives its name.
HANDLE makeFile(const std::wstring &stem, DWORD access, DWORD flags, std::wstring &name) {
    constexpr int kAttempts = 100;
    constexpr std::wstring_view kDigits = L"0123456789abcdefghijklmnopqrstuvwxyz";
    LARGE_INTEGER seed;
    QueryPerformanceCounter(&seed);
    auto number = static_cast<std::uint64_t>(seed.QuadPart) * 0x9E3779B97F4A7C15u + GetCurrentProcessId();
    HANDLE handle = INVALID_HANDLE_VALUE;
    for (int i = 0; i < kAttempts && handle == INVALID_HANDLE_VALUE; ++i) {
        name = stem + L".";
        number = number * 6364136223846793005u + 1442695040888963407u;
        for (std::uint64_t rest = number >> 16, digit = 0; digit < 6; ++digit, rest /= kDigits.size()) {
            name += kDigits[rest % kDigits.size()];
        }
        handle = CreateFileW(name.c_str(), access, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, CREATE_NEW,
                             flags, nullptr);
        if (handle == INVALID_HANDLE_VALUE && GetLastError() != ERROR_FILE_EXISTS) {
            break;
        }
    }
    return handle;
}

// ---- Interruption ---------------------------------------------------------------------------------------

std::mutex pendingMutex; // Windows interrupts on a thread of its own
std::wstring pendingTemporary;

BOOL WINAPI removeTemporary(DWORD) {
    const std::lock_guard<std::mutex> lock(pendingMutex);
    if (!pendingTemporary.empty()) {
        DeleteFileW(pendingTemporary.c_str());
    }
    return FALSE; // the default action ends the program
}

// ---- Terminals ------------------------------------------------------------------------------------------

UINT pageBefore = 0; // of the terminal's output

void restorePage() {
    SetConsoleOutputCP(pageBefore);
}

} // namespace

std::wstring widePath(const std::string &path) {
    const int size = static_cast<int>(path.size());
    std::wstring result(
        static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, path.data(), size, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, path.data(), size, result.data(), static_cast<int>(result.size()));
    return result;
}

void setErrno() {
    switch (GetLastError()) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_NETPATH:
        errno = ENOENT;
        break;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_WRITE_PROTECT:
        errno = EACCES;
        break;
    case ERROR_BROKEN_PIPE:
    case ERROR_NO_DATA:
    case ERROR_PIPE_NOT_CONNECTED:
        errno = EPIPE;
        break;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
        errno = ENOSPC;
        break;
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
        errno = ENOMEM;
        break;
    case ERROR_DIRECTORY:
        errno = ENOTDIR;
        break;
    default:
        errno = EIO;
    }
}

HANDLE openHandleToRead(const std::string &path, DWORD flags) {
    const std::wstring name = widePath(path);
    if (isFolder(name)) {
        errno = EISDIR;
        return INVALID_HANDLE_VALUE;
    }
    // Sharing all: the file may be replaced while it is read.
    const HANDLE handle =
        CreateFileW(name.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, flags, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        setErrno();
    }
    return handle;
}

std::vector<std::string> startProgram(int argc, char **argv) {
    for (const int file : {kStandardInput, kStandardOutput, kStandardError}) {
        _setmode(file, _O_BINARY);
    }
    if (isTerminal(kStandardOutput) || isTerminal(kStandardError)) {
        pageBefore = GetConsoleOutputCP();
        if (pageBefore != 0 && SetConsoleOutputCP(CP_UTF8) != 0) {
            std::atexit(restorePage);
        }
    }
    // The narrow words have lost what the system's code page cannot hold.
    int count = 0;
    wchar_t **const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    if (wide == nullptr) {
        return {argv, argv + argc};
    }
    std::vector<std::string> words;
    for (int i = 0; i < count; ++i) {
        words.push_back(narrow(wide[i]));
    }
    LocalFree(wide);
    return words;
}

bool isTerminal(int file) {
    DWORD mode = 0; // _isatty says yes to NUL and other devices
    return GetConsoleMode(handleOf(file), &mode) != 0;
}

std::string temporaryFolder() {
    wchar_t path[MAX_PATH + 1];
    const DWORD length = GetTempPathW(MAX_PATH + 1, path);
    return length == 0 ? "." : narrow({path, length});
}

// ---- Files ----------------------------------------------------------------------------------------------

bool factsOf(int file, FileFacts &facts) {
    return handleFacts(handleOf(file), facts);
}

bool factsOf(const std::string &path, FileFacts &facts) {
    facts = {};
    const std::wstring name = widePath(path);
    if (isPipe(name)) {
        return true;
    }
    // Without access, which is granted for every file and folder.
    const HANDLE handle = openExisting(name, 0);
    const bool found = handle != INVALID_HANDLE_VALUE && handleFacts(handle, facts);
    if (handle != INVALID_HANDLE_VALUE) {
        CloseHandle(handle);
    }
    return found;
}

bool isReadable(const std::string &path) {
    const std::wstring name = widePath(path);
    if (isPipe(name)) {
        return true; // opening it would use it up
    }
    const HANDLE handle = openExisting(name, GENERIC_READ);
    if (handle == INVALID_HANDLE_VALUE) {
        return false;
    }
    CloseHandle(handle);
    return true;
}

bool isWritable(const std::string &path) {
    return _waccess(widePath(path).c_str(), 2) == 0;
}

int openToRead(const std::string &path) {
    const HANDLE handle = openHandleToRead(path, FILE_FLAG_SEQUENTIAL_SCAN);
    return handle == INVALID_HANDLE_VALUE ? -1 : descriptorOf(handle, _O_RDONLY);
}

int openToWrite(const std::string &path) {
    const std::wstring name = widePath(path);
    if (isFolder(name)) {
        errno = EISDIR;
        return -1;
    }
    return descriptorOf(CreateFileW(name.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, 0, nullptr),
                        _O_WRONLY);
}

int openTemporary(std::string &path) {
    std::wstring name;
    const int file =
        descriptorOf(makeFile(widePath(path), GENERIC_WRITE, FILE_ATTRIBUTE_NORMAL, name), _O_WRONLY);
    if (file >= 0) {
        path = narrow(name);
    }
    return file;
}

int openNameless(const std::string &folder) {
    std::wstring name;
    return descriptorOf(makeFile(widePath(folder + "/velnls-sort"), GENERIC_READ | GENERIC_WRITE | DELETE,
                                 FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, name),
                        _O_RDWR);
}

bool closeFile(int file) {
    return _close(file) == 0;
}

long long readFile(int file, void *buffer, std::size_t size) {
    return _read(file, buffer, static_cast<unsigned>(std::min<std::size_t>(size, INT_MAX)));
}

long long writeFile(int file, const void *bytes, std::size_t size) {
    // The run time would take a pipe whose reader has gone for a bad argument.
    constexpr std::size_t kMost = 1u << 30;
    DWORD count = 0;
    if (WriteFile(handleOf(file), bytes, static_cast<DWORD>(std::min(size, kMost)), &count, nullptr) == 0) {
        setErrno();
        return -1;
    }
    return count;
}

bool rewindFile(int file) {
    return _lseeki64(file, 0, SEEK_SET) == 0;
}

void setRights(int, const FileFacts *) {
    // A new file has the rights that its folder hands down.
}

std::string followLinks(const std::string &path) {
    const HANDLE handle = openExisting(widePath(path), 0);
    if (handle == INVALID_HANDLE_VALUE) {
        return path;
    }
    std::wstring name(32768, L'\0');
    const DWORD length = GetFinalPathNameByHandleW(handle, name.data(), static_cast<DWORD>(name.size()), 0);
    CloseHandle(handle);
    return length == 0 || length >= name.size() ? path : narrow({name.data(), length});
}

bool renameOver(const std::string &from, const std::string &to) {
    if (MoveFileExW(widePath(from).c_str(), widePath(to).c_str(), MOVEFILE_REPLACE_EXISTING) != 0) {
        return true;
    }
    setErrno();
    return false;
}

void removeFile(const std::string &path) {
    DeleteFileW(widePath(path).c_str());
}

void removeOnInterrupt(const std::string &path) {
    static const BOOL watching = SetConsoleCtrlHandler(removeTemporary, TRUE);
    static_cast<void>(watching);
    const std::lock_guard<std::mutex> lock(pendingMutex);
    pendingTemporary = widePath(path);
}

} // namespace velnls::tool::platform
