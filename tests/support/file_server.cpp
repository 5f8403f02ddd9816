#include "file_server.hpp"

#include <algorithm>
#include <map>
#include <mutex>

namespace fixture {

namespace {

std::mutex lock;

std::map<std::uint32_t, FileServer *> &servers() {
    static std::map<std::uint32_t, FileServer *> all;
    return all;
}

std::uint32_t nextToken() {
    static std::uint32_t token = 0x70000000;
    return ++token;
}

} // namespace

FileServer::FileServer(Bytes data) : contents(std::move(data)) {
    const std::lock_guard<std::mutex> guard(lock);
    token_ = nextToken();
    servers()[token_] = this;
}

FileServer::~FileServer() {
    const std::lock_guard<std::mutex> guard(lock);
    servers().erase(token_);
}

void FileServer::restart() {
    log.clear();
    heal();
}

void FileServer::failRead(int number, std::uint32_t missing) {
    failing_ = number;
    missing_ = missing;
}

void FileServer::heal() {
    failing_ = -1;
}

std::uint32_t FileServer::read(std::uint32_t file, std::uint32_t offset, unsigned char *buffer,
                               std::uint32_t length) {
    FileServer *server = nullptr;
    {
        const std::lock_guard<std::mutex> guard(lock);
        const auto found = servers().find(file);
        if (found == servers().end())
            return 0;
        server = found->second;
    }
    const int number = server->reads();
    server->log.push_back({offset, length});
    if (server->onRead)
        server->onRead(offset, length);
    const auto size = static_cast<std::uint32_t>(server->contents.size());
    std::uint32_t count = offset >= size ? 0 : std::min(length, size - offset);
    if (number == server->failing_)
        count -= std::min(count, server->missing_);
    std::copy_n(server->contents.begin() + offset * (count != 0), count, buffer);
    return count;
}

} // namespace fixture
