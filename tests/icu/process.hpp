// What ICU's binding does is done for the process, so each case runs in a process of its own; and what the
// library asks of the system's loader on the way is seen here, and can be made to fail.
#pragma once

#include <functional>
#include <string>
#include <vector>

#if defined(_WIN32)
#define VELNLS_LIBRARY_ENDING ".dll"
#else
#define VELNLS_LIBRARY_ENDING ".so"
#endif

namespace process {

// Runs a test's body in a child. Its failures fail the test; the statuses it saw (see seen) are counted here.
// The child may be this program once more, which comes to the body by the test's own way: what a test does
// around its bodies is done there too, and what they change is not seen outside.
void isolated(const std::function<void()> &body);

// Whether this is such a child, whose summary nobody needs.
bool isChild();

// In a child: succeeds when a call gave a status, which then counts as covered.
testing::AssertionResult seen(const char *exportName, std::int32_t expected, std::uint32_t actual);

// The loader's calls since the process began, in order: "load PATH", "find NAME", "unload PATH".
std::vector<std::string> loaderCalls();
void forgetLoaderCalls();
// Makes every look-up of this name fail.
void hideSymbol(const std::string &name);

// Large blocks of the heap are refused from now on.
void refuseLargeBlocks();

#if defined(_WIN32)
inline constexpr char kSeparator = '\\';
inline constexpr char kNoSuchFolder[] = "C:\\no\\such\\folder";
#else
inline constexpr char kSeparator = '/';
inline constexpr char kNoSuchFolder[] = "/no/such/folder";
#endif

// A value for PATH.
std::string pathOf(const std::vector<std::string> &folders);

// A folder with a folder "bin", both empty, which goes with this object.
class Home {
public:
    Home();
    ~Home();
    Home(const Home &) = delete;
    Home &operator=(const Home &) = delete;

    [[nodiscard]] const std::string &path() const {
        return path_;
    }
    [[nodiscard]] std::string bin() const {
        return path_ + kSeparator + "bin";
    }
    // The file of a library below bin/.
    [[nodiscard]] std::string library(const std::string &name) const {
        return bin() + kSeparator + name + VELNLS_LIBRARY_ENDING;
    }
    // Copies a library of the build below bin/ under the name that is looked for, both without ending.
    void put(const std::string &built, const std::string &name) const;
    // All three of the fake ICU.
    void putIcu() const;
    // The forwarding libraries, and beside them the fake of today's ICU but for the one that is `missing`:
    // "dt", "uc", "in".
    void putForwarders(const std::string &missing = "") const;

private:
    std::string path_;
};

void setVariable(const char *name, const std::string &value);
void clearVariable(const char *name);

} // namespace process
