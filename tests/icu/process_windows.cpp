// Children that are this program once more, and functions in place of those that velnls.dll imports.
#include <gtest/gtest.h>

#include "process_parts.hpp"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace process {

namespace {

// What a child is told: the place of its body among those of its test, and a folder for its report and for
// whatever else it writes. Libraries that it has loaded cannot be removed while it runs.
constexpr char kBody[] = "VELNLS_TEST_BODY";
constexpr char kFolder[] = "VELNLS_TEST_FOLDER";
constexpr char kBegun[] = "begun\n";
constexpr char kEnded[] = "ended\n";
constexpr DWORD kPatience = 120000; // milliseconds
// Under load Wine cannot always start a program (ERROR_INTERNAL_ERROR); nothing of it has run then.
constexpr int kStarts = 3;

std::string variable(const char *name) {
    const char *const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

std::string reportPath(const std::string &folder) {
    return folder + "\\report";
}

// ---- The loader ----

decltype(&LoadLibraryA) realLoad = nullptr;
decltype(&GetProcAddress) realFind = nullptr;
decltype(&FreeLibrary) realUnload = nullptr;
decltype(&std::malloc) realAllocate = nullptr;
bool refuses = false;

HMODULE WINAPI loadSeen(const char *path) {
    HMODULE const library = realLoad(path);
    loader().loaded(path, reinterpret_cast<void *>(library));
    return library;
}

FARPROC WINAPI findSeen(HMODULE library, const char *name) {
    return loader().isHidden(name) ? nullptr : realFind(library, name);
}

BOOL WINAPI unloadSeen(HMODULE library) {
    loader().unloading(reinterpret_cast<void *>(library));
    return realUnload(library);
}

void *allocateSeen(std::size_t size) {
    return refuses && size > 1U << 20 ? nullptr : realAllocate(size);
}

// Puts a function in place of one that a loaded library imports.
template <typename Function>
bool replaceImport(HMODULE library, const char *name, Function replacement, Function &original) {
    auto *const base = reinterpret_cast<unsigned char *>(library);
    const auto *const dos = reinterpret_cast<const IMAGE_DOS_HEADER *>(base);
    const auto *const headers = reinterpret_cast<const IMAGE_NT_HEADERS *>(base + dos->e_lfanew);
    const auto *from = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR *>(
        base + headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress);
    for (; from->Name != 0; ++from) {
        const auto *names = reinterpret_cast<const IMAGE_THUNK_DATA *>(base + from->OriginalFirstThunk);
        auto *addresses = reinterpret_cast<IMAGE_THUNK_DATA *>(base + from->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++addresses) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal))
                continue;
            const auto *const entry =
                reinterpret_cast<const IMAGE_IMPORT_BY_NAME *>(base + names->u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<const char *>(entry->Name), name) != 0)
                continue;
            DWORD before = 0;
            if (VirtualProtect(addresses, sizeof *addresses, PAGE_READWRITE, &before) == 0)
                return false;
            std::memcpy(&original, &addresses->u1.Function, sizeof original);
            std::memcpy(&addresses->u1.Function, &replacement, sizeof replacement);
            return VirtualProtect(addresses, sizeof *addresses, before, &before) != 0;
        }
    }
    return false;
}

void watchLoader() {
    HMODULE const velnls = GetModuleHandleA("velnls.dll");
    ASSERT_NE(velnls, nullptr);
    ASSERT_TRUE(replaceImport(velnls, "LoadLibraryA", loadSeen, realLoad));
    ASSERT_TRUE(replaceImport(velnls, "GetProcAddress", findSeen, realFind));
    ASSERT_TRUE(replaceImport(velnls, "FreeLibrary", unloadSeen, realUnload));
    ASSERT_TRUE(replaceImport(velnls, "malloc", allocateSeen, realAllocate));
}

// ---- Children ----

// The place of this call among those of the running test.
int nextBody() {
    static const testing::TestInfo *last = nullptr;
    static int count = 0;
    const testing::TestInfo *const test = testing::UnitTest::GetInstance()->current_test_info();
    count = test == last ? count + 1 : 0;
    last = test;
    return count;
}

void runBody(const std::function<void()> &body) {
    const std::string report = reportPath(variable(kFolder));
    std::ofstream(report, std::ios::binary) << kBegun;
    watchLoader();
    body();
    std::ofstream(report, std::ios::binary | std::ios::app) << kEnded;
}

// This program once more, for one test and one body of it: its exit code.
DWORD runChild(int body, const std::string &folder) {
    const testing::TestInfo *const test = testing::UnitTest::GetInstance()->current_test_info();
    char program[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, program, sizeof program);
    std::string command = std::string("\"") + program +
                          "\" --gtest_brief=1 --gtest_filter=" + test->test_suite_name() + "." + test->name();
    setVariable(kBody, std::to_string(body));
    setVariable(kFolder, folder);
    STARTUPINFOA start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION child{};
    BOOL started = 0;
    for (int i = 0; i < kStarts && started == 0; ++i)
        started = CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                                 &child);
    const DWORD error = GetLastError();
    clearVariable(kBody);
    clearVariable(kFolder);
    if (started == 0)
        return error;
    DWORD code = WAIT_TIMEOUT;
    if (WaitForSingleObject(child.hProcess, kPatience) == WAIT_OBJECT_0)
        GetExitCodeProcess(child.hProcess, &code);
    else
        TerminateProcess(child.hProcess, code);
    CloseHandle(child.hThread);
    CloseHandle(child.hProcess);
    return code;
}

} // namespace

bool isChild() {
    return !variable(kBody).empty();
}

void isolated(const std::function<void()> &body) {
    const int place = nextBody();
    if (isChild()) {
        if (std::to_string(place) == variable(kBody))
            runBody(body);
        return;
    }
    const std::string folder = makeFolder();
    const DWORD code = runChild(place, folder);
    std::ostringstream text;
    text << std::ifstream(reportPath(folder), std::ios::binary).rdbuf();
    std::error_code error;
    std::filesystem::remove_all(folder, error);
    EXPECT_EQ(code, 0U) << "the process of this case";
    std::string rows = text.str();
    const std::size_t end = rows.size() - std::min(rows.size(), sizeof kEnded - 1);
    if (rows.rfind(kBegun, 0) != 0 || rows.substr(end) != kEnded) {
        ADD_FAILURE() << "the process of this case did not run its body to the end";
        return;
    }
    countRows(rows.substr(sizeof kBegun - 1, end - (sizeof kBegun - 1)));
}

bool reportRow(const std::string &row) {
    if (!isChild())
        return true;
    std::ofstream report(reportPath(variable(kFolder)), std::ios::binary | std::ios::app);
    report << row << '\n';
    return report.good();
}

std::string makeFolder() {
    static int count = 0;
    std::string parent = variable(kFolder);
    if (parent.empty())
        parent = std::filesystem::temp_directory_path().string();
    const std::string path =
        (std::filesystem::path(parent) /
         ("velnls-icu-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(count++)))
            .make_preferred()
            .string();
    std::filesystem::create_directory(path);
    return path;
}

void refuseLargeBlocks() {
    refuses = true;
}

void setVariable(const char *name, const std::string &value) {
    _putenv_s(name, value.c_str());
}

void clearVariable(const char *name) {
    _putenv_s(name, "");
}

} // namespace process
