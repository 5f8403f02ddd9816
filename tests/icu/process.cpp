#include <gtest/gtest.h>

#include "process.hpp"
#include "process_parts.hpp"

#include "status_rows.hpp"

#include <algorithm>
#include <filesystem>

namespace process {

// ---- The loader ----

Loader &loader() {
    static Loader one;
    return one;
}

void Loader::loaded(const std::string &path, void *library) {
    if (path.find("-qmx") == std::string::npos && path.find("usortwin") == std::string::npos)
        return;
    const std::scoped_lock lock(mutex);
    calls.push_back("load " + path);
    if (library != nullptr)
        paths[library] = path;
}

bool Loader::isHidden(const std::string &name) {
    if (name.rfind("ucnv_", 0) != 0 && name.rfind("ucol_", 0) != 0 && name.rfind("UserSort", 0) != 0)
        return false;
    const std::scoped_lock lock(mutex);
    calls.push_back("find " + name);
    return std::find(hidden.begin(), hidden.end(), name) != hidden.end();
}

void Loader::unloading(void *library) {
    const std::scoped_lock lock(mutex);
    if (paths.count(library) != 0)
        calls.push_back("unload " + paths[library]);
}

std::vector<std::string> loaderCalls() {
    const std::scoped_lock lock(loader().mutex);
    return loader().calls;
}

void forgetLoaderCalls() {
    const std::scoped_lock lock(loader().mutex);
    loader().calls.clear();
}

void hideSymbol(const std::string &name) {
    const std::scoped_lock lock(loader().mutex);
    loader().hidden.push_back(name);
}

// ---- Statuses ----

testing::AssertionResult seen(const char *exportName, std::int32_t expected, std::uint32_t actual) {
    if (static_cast<std::int32_t>(actual) != expected)
        return testing::AssertionFailure()
               << exportName << " gave " << static_cast<std::int32_t>(actual) << " instead of " << expected;
    if (!reportRow(std::string(exportName) + " " + std::to_string(expected)))
        return testing::AssertionFailure() << "no report";
    return testing::AssertionSuccess();
}

void countRows(const std::string &rows) {
    for (std::size_t at = 0; at < rows.size();) {
        const std::size_t end = rows.find('\n', at);
        const std::size_t blank = rows.find(' ', at);
        const int number = std::stoi(rows.substr(blank + 1, end - blank - 1));
        EXPECT_TRUE(
            fixture::gives(rows.substr(at, blank - at).c_str(), number, static_cast<nlsStatus>(number)));
        at = end + 1;
    }
}

// ---- Folders ----

std::string pathOf(const std::vector<std::string> &folders) {
    std::string list;
    for (std::size_t i = 0; i < folders.size(); ++i)
        list += (i == 0 ? "" : kSeparator == '\\' ? ";" : ":") + folders[i];
    return list;
}

Home::Home() : path_(makeFolder()) {
    std::filesystem::create_directory(bin());
}

Home::~Home() {
    std::error_code error;
    std::filesystem::remove_all(path_, error);
}

void Home::put(const std::string &built, const std::string &name) const {
    std::filesystem::copy_file(std::string(VELNLS_FAKES) + "/" + built + VELNLS_LIBRARY_ENDING,
                               library(name));
}

void Home::putIcu() const {
    put("data", "icudata-qmx");
    put("common", "icuuc-qmx");
    put("languages", "icui18n-qmx");
}

#if defined(VELNLS_ICU_TODAY)
void Home::putForwarders(const std::string &missing) const {
    for (const std::string forwarder : {"icudata-qmx", "icuuc-qmx", "icui18n-qmx"})
        put(forwarder, forwarder);
    for (const std::string part : {"dt", "uc", "in"})
        if (part != missing)
            put("icu" + part + VELNLS_ICU_TODAY, "icu" + part + VELNLS_ICU_TODAY);
}
#endif

} // namespace process
