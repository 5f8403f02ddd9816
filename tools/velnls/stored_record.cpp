// Writes and reads the numbers byte by byte, and trusts no size in a file.
#include "stored_record.hpp"

#include <cstring>
#include <stdexcept>

#include "input.hpp"
#include "status.hpp"

namespace velnls::tool {

namespace {

constexpr char kMark[] = "VELNLSR1";
constexpr std::size_t kMarkSize = sizeof kMark - 1;
constexpr std::size_t kNameSize = sizeof nlsDbCollation::codePageName;
constexpr std::size_t kHeadSize = kMarkSize + 3 * kNameSize + 4 * 4;
constexpr std::int32_t kNewForm = 6;
// The character table's and the collation's share of the data; a record with less cannot be rebuilt.
constexpr std::uint32_t kLeastData = 1368;
constexpr std::uint32_t kMostData = 1024 * 1024;
// Rebuilding looks at numbers somewhat behind the tables, which a short record does not have.
constexpr std::size_t kPadding = 1024;

void putNumber(std::string &bytes, std::uint32_t number) {
    for (int shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>(number >> shift & 0xFF);
    }
}

std::uint32_t takeNumber(const unsigned char *&at) {
    std::uint32_t number = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        number |= static_cast<std::uint32_t>(*at++) << shift;
    }
    return number;
}

void takeName(const unsigned char *&at, char (&name)[kNameSize]) {
    std::memcpy(name, at, kNameSize);
    name[kNameSize - 1] = '\0';
    at += kNameSize;
}

} // namespace

StoredRecord::StoredRecord(nlsLocale *locale) : data_(kMostData) {
    record_.data = data_.data();
    const nlsStatus status = nlsLocaleToDbCollation(locale, kNewForm, kMostData, &record_);
    if (status != NLS_OK) {
        throw StatusError("storing the collation", status);
    }
    data_.resize(record_.dataSize);
    record_.data = data_.data();
}

StoredRecord::StoredRecord(const std::string &path) {
    Input input(path);
    std::vector<unsigned char> file(kHeadSize + kMostData + 1);
    std::size_t size = 0;
    for (std::size_t count = 1; count != 0 && size < file.size(); size += count) {
        count = input.read(file.data() + size, file.size() - size);
    }
    if (size < kHeadSize + kLeastData || std::memcmp(file.data(), kMark, kMarkSize) != 0) {
        throw std::runtime_error(input.name() + ": not a collation record");
    }
    const unsigned char *at = file.data() + kMarkSize;
    takeName(at, record_.codePageName);
    takeName(at, record_.collationName);
    takeName(at, record_.caseTableName);
    record_.collationKind = takeNumber(at);
    record_.collationWord = takeNumber(at);
    record_.dataSize = takeNumber(at);
    record_.blockSize = takeNumber(at);
    if (record_.dataSize != size - kHeadSize || record_.blockSize > 2 * kMostData) {
        throw std::runtime_error(input.name() + ": a collation record of another size than it says");
    }
    data_.assign(at, at + record_.dataSize);
    data_.resize(record_.dataSize + kPadding);
    record_.data = data_.data();
}

std::string StoredRecord::bytes() const {
    std::string bytes = kMark;
    bytes.append(record_.codePageName, kNameSize);
    bytes.append(record_.collationName, kNameSize);
    bytes.append(record_.caseTableName, kNameSize);
    putNumber(bytes, record_.collationKind);
    putNumber(bytes, record_.collationWord);
    putNumber(bytes, record_.dataSize);
    putNumber(bytes, record_.blockSize);
    bytes.append(reinterpret_cast<const char *>(data_.data()), record_.dataSize);
    return bytes;
}

} // namespace velnls::tool
