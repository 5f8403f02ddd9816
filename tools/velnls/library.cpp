// Lends memory, answers the library's reads and wraps its objects.
#include "library.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <span>

namespace velnls::tool {

namespace {

// The directory of the default file takes 48 KB of the first block; the rest holds the tables of most pairs.
// Lent memory is cleared by the library, so a larger first block would only cost time.
constexpr std::int32_t kFirstBlock = 160 * 1024;
// The largest page takes about 120 KB, which must come from one block.
constexpr std::int32_t kNextBlock = 192 * 1024;
constexpr std::int32_t kLargestBlock = 64 * 1024 * 1024;
// Bytes of a rebuilt locale's block besides the data and the name: the locale itself, and a sort data block
// of the size that stands for none.
constexpr std::uint32_t kBlockRoom = 512;

// What the numbers that the library passes back to the read callback stand for.
std::vector<std::span<const unsigned char>> &openData() {
    static std::vector<std::span<const unsigned char>> files;
    return files;
}

std::vector<std::string> splitAtCommas(const std::string &text) {
    std::vector<std::string> items;
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t comma = std::min(text.find(',', start), text.size());
        items.push_back(text.substr(start, comma - start));
        start = comma + 1;
    }
    return items;
}

// Runs a call that fills a counted string of "length" bytes and splits what it wrote.
template <typename Call>
std::vector<std::string> readList(std::uint32_t length, Call call) {
    std::vector<char> buffer(length + 1);
    nlsStr text = {};
    nlsInitString(buffer.data(), static_cast<std::uint32_t>(buffer.size()), &text);
    const nlsStatus status = call(&text);
    if (status != NLS_OK) {
        throw StatusError("reading a list of names", status);
    }
    return splitAtCommas(std::string(text.buffer, text.length));
}

} // namespace

void Library::FreeDeleter::operator()(void *memory) const {
    std::free(memory);
}

std::uint32_t Library::readData(std::uint32_t file, std::uint32_t offset, unsigned char *buffer,
                                std::uint32_t length) {
    const std::span<const unsigned char> bytes = openData().at(file);
    if (offset >= bytes.size()) {
        return 0;
    }
    const std::size_t count = std::min<std::size_t>(length, bytes.size() - offset);
    std::memcpy(buffer, bytes.data() + offset, count);
    return static_cast<std::uint32_t>(count);
}

Library::Block Library::newBlock(std::int32_t size) {
    Block block(std::malloc(static_cast<std::size_t>(size)));
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

Library::Library(const DataSource &data) : data_(data), nextBlockSize_(kNextBlock) {
    token_ = static_cast<std::uint32_t>(openData().size());
    openData().push_back(data.bytes());
    for (std::int32_t size = kFirstBlock;; size *= 2) {
        Block block = newBlock(size);
        const nlsStatus status = nlsInit(token_, block.get(), size, &Library::readData, &handle_);
        if (status == NLS_OK) {
            blocks_.push_back(std::move(block));
            return;
        }
        if (status != NLS_E_NOMEM || size >= kLargestBlock) {
            throw StatusError(data.name(), status);
        }
    }
}

Library::~Library() {
    nlsClose(handle_);
}

void Library::lendMore() {
    Block block = newBlock(nextBlockSize_);
    const nlsStatus status = nlsAddBuffer(handle_, block.get(), nextBlockSize_);
    if (status != NLS_OK) {
        throw StatusError("lending memory", status);
    }
    blocks_.push_back(std::move(block));
    nextBlockSize_ *= 2;
}

template <typename Call>
nlsStatus Library::withMemory(Call call) {
    for (;;) {
        const nlsStatus status = call();
        // Blocks double, so a data file that asks for too much is given up after a few steps.
        if (status != NLS_E_NOMEM || nextBlockSize_ > kLargestBlock) {
            return status;
        }
        lendMore();
    }
}

nlsStatus Library::create(const std::string &codePage, const char *collation, const char *caseTable,
                          nlsLocale *&locale) {
    return withMemory(
        [&] { return nlsCreateLocale(handle_, codePage.c_str(), collation, caseTable, &locale); });
}

nlsLocale *Library::locale(const std::string &codePage) {
    nlsLocale *result = nullptr;
    const nlsStatus status = create(codePage, NLS_NO_COLLATION, nullptr, result);
    if (status != NLS_OK) {
        throw StatusError("code page " + codePage + " of " + data_.name(), status);
    }
    return result;
}

nlsLocale *Library::locale(const std::string &codePage, const std::string &collation,
                           const std::string &caseTable) {
    nlsLocale *result = nullptr;
    const nlsStatus status =
        create(codePage, collation.c_str(), caseTable.empty() ? nullptr : caseTable.c_str(), result);
    if (status != NLS_OK) {
        // The library answers an ICU collation that does not open like exhausted memory.
        const bool icu = status == NLS_E_NOMEM && collation.rfind("ICU-", 0) == 0;
        throw StatusError("collation " + collation + " of " + codePage, icu ? NLS_E_ICULOAD : status);
    }
    return result;
}

nlsLocale *Library::rebuild(const nlsDbCollation &record, const std::string &name) {
    std::uint32_t size = 0;
    nlsLocale *result = nullptr;
    // Without a block the call tells how much it needs.
    nlsStatus status = nlsDbCollationToLocale(handle_, &record, name.c_str(), &size, nullptr, &result);
    if (status == NLS_E_BUFFER) {
        // The estimate reads its numbers where the block has them, so it can be too small.
        const std::uint32_t more = static_cast<std::uint32_t>(name.size()) + kBlockRoom;
        size = std::max({size, record.blockSize + more, record.dataSize + more});
        if (size > static_cast<std::uint32_t>(kLargestBlock)) {
            throw StatusError("rebuilding " + name, NLS_E_NOMEM);
        }
        Block block = newBlock(static_cast<std::int32_t>(size));
        status = withMemory([&] {
            return nlsDbCollationToLocale(handle_, &record, name.c_str(), &size, block.get(), &result);
        });
        blocks_.push_back(std::move(block));
    }
    if (status != NLS_OK) {
        throw StatusError("rebuilding " + name, status);
    }
    return result;
}

nlsLocale *Library::utf8() {
    nlsLocale *result = nullptr;
    const nlsStatus status = create("UTF-8", NLS_NO_COLLATION, nullptr, result);
    if (status != NLS_OK && status != NLS_E_NOCHARSET) {
        throw StatusError("code page UTF-8 of " + data_.name(), status);
    }
    return result;
}

nlsConversion *Library::conversion(nlsLocale *source, nlsLocale *target) {
    if (source == nullptr || target == nullptr) {
        return nullptr;
    }
    nlsConversion *result = nullptr;
    const nlsStatus status =
        withMemory([&] { return nlsCreateConversion(handle_, source, target, &result); });
    if (status == NLS_E_ICU) {
        return nullptr;
    }
    if (status != NLS_OK) {
        throw StatusError("conversion table of " + data_.name(), status);
    }
    return result;
}

std::vector<std::string> Library::list(NameList list) const {
    // The property that tells each list's length.
    constexpr std::pair<NameList, std::int32_t> kLengths[] = {
        {NameList::CodePages, 1},
        {NameList::Collations, 4},
        {NameList::CaseTables, 5},
        {NameList::Conversions, 6},
    };
    std::uint32_t length = 0;
    for (const auto &[of, lengthProperty] : kLengths) {
        if (of == list) {
            const nlsStatus status = nlsGetIntNLSProperty(handle_, lengthProperty, &length);
            if (status != NLS_OK) {
                throw StatusError("reading a list of names", status);
            }
        }
    }
    return readList(length, [&](nlsStr *text) {
        return nlsGetStrNLSProperty(handle_, static_cast<std::uint32_t>(list), text);
    });
}

std::vector<std::string> Library::list(nlsLocale *locale, NameList list) {
    // The lengths of lists 7, 8 and 9 of a locale are its properties 4, 5 and 6.
    const std::int32_t property = static_cast<std::int32_t>(list);
    const std::uint32_t length = number(locale, static_cast<LocaleNumber>(property - 3));
    return readList(length, [&](nlsStr *text) { return nlsGetStrLocaleProperty(locale, property, text); });
}

std::uint32_t Library::number(nlsLocale *locale, LocaleNumber property) {
    std::uint32_t value = 0;
    const nlsStatus status = nlsGetIntLocaleProperty(locale, static_cast<std::int32_t>(property), &value);
    if (status != NLS_OK) {
        throw StatusError("reading a property of a code page", status);
    }
    return value;
}

bool Library::isChain(nlsConversion *conversion) {
    std::uint32_t value = 0;
    return nlsGetIntConversionProperty(conversion, 28, &value) == NLS_OK && value == 1;
}

} // namespace velnls::tool
