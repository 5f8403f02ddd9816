#include "page_decoder.hpp"

namespace velnls::nlsgen {
namespace {

constexpr std::uint8_t kLastAscii = 0x7E;

std::optional<std::uint32_t> characterOf(const FileView &file, const EntryView *toUtf8, std::uint8_t byte) {
    if (toUtf8 != nullptr && toUtf8->offset != 0) {
        const auto offset = static_cast<std::size_t>(toUtf8->offset);
        const int type = conversionType(file, *toUtf8);
        if (isMappingType(type)) {
            if (const auto found = FileLookup(file.bytes(), offset).toUnicode(byte))
                return found;
        } else if (isByteMapType(type)) {
            const auto body = file.at<file::Conversion>(offset);
            return body.body[byte * 2] | static_cast<std::uint32_t>(body.body[byte * 2 + 1]) << 8;
        }
    }
    return byte <= kLastAscii ? std::optional<std::uint32_t>(byte) : std::nullopt;
}

} // namespace

PageDecoder::PageDecoder(const FileView &file, const EntryView *toUtf8) {
    for (std::uint32_t i = 0; i < meanings_.size(); i++) {
        const auto byte = static_cast<std::uint8_t>(i);
        meanings_[i] = characterOf(file, toUtf8, byte).value_or(kMeaningless | i);
        if (!bytes_.emplace(meanings_[i], byte).second) {
            meanings_[i] = kMeaningless | i;
            bytes_.emplace(meanings_[i], byte);
        }
    }
}

std::optional<std::uint8_t> PageDecoder::byteOf(ByteMeaning meaning) const {
    const auto found = bytes_.find(meaning);
    return found == bytes_.end() ? std::nullopt : std::optional(found->second);
}

} // namespace velnls::nlsgen
