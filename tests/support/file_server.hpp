// A data file behind a read callback that counts, logs, fails on demand and can call back into the test.
#pragma once

#include "bytes.hpp"

#include "velnls.h"

#include <functional>

namespace fixture {

struct ReadLog {
    std::uint32_t offset;
    std::uint32_t length;
};

// Each server has a file token of its own, under which the common callback finds it.
class FileServer {
public:
    explicit FileServer(Bytes contents);
    ~FileServer();
    FileServer(const FileServer &) = delete;
    FileServer &operator=(const FileServer &) = delete;

    static constexpr std::uint32_t kEverything = 0xFFFFFFFF;

    [[nodiscard]] std::uint32_t token() const {
        return token_;
    }
    static std::uint32_t read(std::uint32_t file, std::uint32_t offset, unsigned char *buffer,
                              std::uint32_t length);

    // Forgets what was read so far; failRead counts from here.
    void restart();
    // Makes the read with this number (from 0, counted since restart) deliver so many bytes less.
    void failRead(int number, std::uint32_t missing = kEverything);
    void heal();

    [[nodiscard]] int reads() const {
        return static_cast<int>(log.size());
    }

    Bytes contents;
    std::vector<ReadLog> log;
    // Runs inside every read, before anything is delivered.
    std::function<void(std::uint32_t offset, std::uint32_t length)> onRead;

private:
    std::uint32_t token_;
    int failing_ = -1;
    std::uint32_t missing_ = 0;
};

} // namespace fixture
