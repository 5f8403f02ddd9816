// A sorted part of the input in a temporary file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velnls::tool {

// Written once from front to back, then read once. The file has no name: it is gone when the run goes, also
// when the program is ended by force. Failures are thrown as std::system_error naming the folder.
class SortRun {
public:
    explicit SortRun(const std::string &folder);
    ~SortRun();
    SortRun(SortRun &&other) noexcept;
    SortRun &operator=(SortRun &&other) = delete;

    void write(std::string_view key, std::string_view line);
    // Ends the writing and goes back to the front, before the first record.
    void rewind();
    // Reads the next record; false at the end.
    bool next();
    std::string_view key() const {
        return key_;
    }
    std::string_view line() const {
        return line_;
    }

private:
    void put(const char *bytes, std::size_t size);
    void get(char *bytes, std::size_t size);
    bool fill();
    void flush();
    [[noreturn]] void fail() const; // tells the last failure of the system

    std::string folder_;
    int descriptor_ = -1;
    std::uint64_t records_ = 0; // written and not yet read
    std::vector<char> buffer_;
    std::size_t at_ = 0;
    std::size_t end_ = 0;
    std::string key_;
    std::string line_;
};

} // namespace velnls::tool
