#include "contestants.hpp"

#include <unicode/ucnv.h>
#include <unicode/ucnv_err.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iconv.h>

namespace bench {

std::size_t Strings::sourceBytes() const {
    std::size_t sum = 0;
    for (const Piece &piece : pieces)
        sum += piece.length;
    return sum;
}

std::size_t Strings::longest() const {
    std::size_t most = 0;
    for (const Piece &piece : pieces)
        most = std::max(most, piece.length);
    return most;
}

void Strings::add(std::string_view text) {
    pieces.push_back({bytes.size(), text.size()});
    bytes += text;
    bytes.append(4, '\0');
    bytes.append((4 - bytes.size() % 4) % 4, '\0'); // UTF-16 and UTF-32 units stand aligned
}

namespace {

// ---- velnls ---------------------------------------------------------------------------------------------

std::vector<unsigned char> dataBytes;
std::vector<unsigned char> lentMemory(8 << 20);
nlsHandle *handle = nullptr;

std::uint32_t readData(std::uint32_t, std::uint32_t offset, unsigned char *buffer, std::uint32_t length) {
    if (offset >= dataBytes.size())
        return 0;
    const auto count = std::min<std::size_t>(length, dataBytes.size() - offset);
    std::memcpy(buffer, dataBytes.data() + offset, count);
    return static_cast<std::uint32_t>(count);
}

class Velnls : public Contestant {
public:
    Velnls(nlsConversion *conversion, std::string name) : conversion_(conversion), name_(std::move(name)) {}
    std::string name() const override {
        return name_;
    }
    void prepare(const Strings &strings) override {
        room_.resize(roomFor(strings.longest()));
        base_ = nullptr;
    }
    std::size_t run(const Strings &strings) override {
        // A caller holds its column values as counted strings already; making them is no part of a
        // conversion.
        if (base_ != strings.bytes.data()) {
            base_ = strings.bytes.data();
            sources_.clear();
            for (const Strings::Piece &piece : strings.pieces)
                sources_.push_back({const_cast<char *>(base_) + piece.offset,
                                    static_cast<std::uint32_t>(piece.length) + 1,
                                    static_cast<std::uint32_t>(piece.length)});
        }
        nlsStr destination{room_.data(), static_cast<std::uint32_t>(room_.size()), 0};
        std::size_t sum = 0;
        for (const nlsStr &source : sources_) {
            nlsConvertNLS(conversion_, &source, nullptr, &destination);
            sum += destination.length;
        }
        return sum;
    }
    bool convert(std::string_view text, std::string &output) override {
        std::string source(text);
        output.assign(roomFor(text.size()), '\0');
        const nlsStr from{source.data(), static_cast<std::uint32_t>(source.size()) + 1,
                          static_cast<std::uint32_t>(source.size())};
        nlsStr to{output.data(), static_cast<std::uint32_t>(output.size()), 0};
        const nlsStatus status = nlsConvertNLS(conversion_, &from, nullptr, &to);
        output.resize(to.length);
        return status == NLS_OK;
    }

private:
    nlsConversion *conversion_;
    std::string name_;
    std::vector<char> room_;
    const char *base_ = nullptr;
    std::vector<nlsStr> sources_;
};

nlsLocale *localeFor(const Page &page) {
    nlsLocale *locale = nullptr;
    const nlsStatus status = nlsCreateLocale(handle, page.velnls, NLS_NO_COLLATION, nullptr, &locale);
    if (status != NLS_OK)
        std::fprintf(stderr, "velnls_bench: locale %s gives status %u\n", page.velnls, status);
    return locale;
}

// ---- iconv ----------------------------------------------------------------------------------------------

class Iconv : public Contestant {
public:
    explicit Iconv(iconv_t descriptor) : descriptor_(descriptor) {}
    ~Iconv() override {
        iconv_close(descriptor_);
    }
    std::string name() const override {
        return "iconv";
    }
    void prepare(const Strings &strings) override {
        room_.resize(roomFor(strings.longest()));
    }
    std::size_t run(const Strings &strings) override {
        std::size_t sum = 0;
        for (const Strings::Piece &piece : strings.pieces)
            sum += one(strings.bytes.data() + piece.offset, piece.length, room_.data(), room_.size());
        return sum;
    }
    bool convert(std::string_view text, std::string &output) override {
        output.assign(roomFor(text.size()), '\0');
        char *input = const_cast<char *>(text.data());
        std::size_t inputLeft = text.size();
        char *out = output.data();
        std::size_t outputLeft = output.size();
        const std::size_t result = iconv(descriptor_, &input, &inputLeft, &out, &outputLeft);
        output.resize(output.size() - outputLeft);
        if (result != 0 || inputLeft != 0) {
            iconv(descriptor_, nullptr, nullptr, nullptr, nullptr);
            return false;
        }
        return true;
    }

private:
    std::size_t one(const char *text, std::size_t length, char *room, std::size_t size) {
        char *input = const_cast<char *>(text);
        std::size_t outputLeft = size;
        iconv(descriptor_, &input, &length, &room, &outputLeft);
        return size - outputLeft;
    }

    iconv_t descriptor_;
    std::vector<char> room_;
};

// ---- ICU ------------------------------------------------------------------------------------------------

struct CloseConverter {
    void operator()(UConverter *converter) const {
        ucnv_close(converter);
    }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

Converter openConverter(const Page &page) {
    UErrorCode error = U_ZERO_ERROR;
    Converter converter(ucnv_open(page.icu, &error));
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
    ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
    if (U_FAILURE(error)) {
        std::fprintf(stderr, "velnls_bench: ICU has no %s\n", page.icu);
        return nullptr;
    }
    return converter;
}

class Icu : public Contestant {
public:
    void prepare(const Strings &strings) override {
        room_.resize(roomFor(strings.longest()));
        pivot_.resize(strings.longest() + 64);
    }
    std::size_t run(const Strings &strings) override {
        std::size_t sum = 0;
        for (const Strings::Piece &piece : strings.pieces) {
            UErrorCode error = U_ZERO_ERROR;
            sum += one(strings.bytes.data() + piece.offset, static_cast<std::int32_t>(piece.length),
                       room_.data(), static_cast<std::int32_t>(room_.size()), error);
        }
        return sum;
    }
    bool convert(std::string_view text, std::string &output) override {
        Strings strings;
        strings.add(text);
        prepare(strings);
        UErrorCode error = U_ZERO_ERROR;
        const std::size_t written = one(strings.bytes.data(), static_cast<std::int32_t>(text.size()),
                                        room_.data(), static_cast<std::int32_t>(room_.size()), error);
        if (U_FAILURE(error))
            return false;
        output.assign(room_.data(), written);
        return true;
    }

protected:
    virtual std::size_t one(const char *text, std::int32_t length, char *room, std::int32_t size,
                            UErrorCode &error) = 0;
    UChar *pivot() {
        return pivot_.data();
    }
    std::int32_t pivotSize() const {
        return static_cast<std::int32_t>(pivot_.size());
    }

private:
    std::vector<char> room_;
    std::vector<UChar> pivot_;
};

// ucnv_convertEx between two open converters, the call that streams.
class IcuConvertEx : public Icu {
public:
    IcuConvertEx(Converter source, Converter target)
        : source_(std::move(source)), target_(std::move(target)) {}
    std::string name() const override {
        return "ICU ucnv_convertEx";
    }

private:
    std::size_t one(const char *text, std::int32_t length, char *room, std::int32_t size,
                    UErrorCode &error) override {
        UChar small[1024];
        UChar *pivotSource = small;
        UChar *pivotTarget = small;
        char *out = room;
        ucnv_convertEx(target_.get(), source_.get(), &out, room + size, &text, text + length, small,
                       &pivotSource, &pivotTarget, small + 1024, true, true, &error);
        return static_cast<std::size_t>(out - room);
    }

    Converter source_;
    Converter target_;
};

// Through UTF-16 in a buffer of its own: string functions for the Unicode forms, open converters for pages.
class IcuThroughUtf16 : public Icu {
public:
    IcuThroughUtf16(const Page &source, const Page &target)
        : sourceForm_(formOf(source)), targetForm_(formOf(target)) {
        if (sourceForm_ == Form::page)
            source_ = openConverter(source);
        if (targetForm_ == Form::page)
            target_ = openConverter(target);
    }
    std::string name() const override {
        std::string text = "ICU ";
        switch (sourceForm_) {
        case Form::utf8:
            text += "u_strFromUTF8";
            break;
        case Form::utf32:
            text += "u_strFromUTF32";
            break;
        case Form::page:
            text += "ucnv_toUChars";
            break;
        case Form::utf16:
            break;
        }
        if (sourceForm_ != Form::utf16 && targetForm_ != Form::utf16)
            text += " + ";
        switch (targetForm_) {
        case Form::utf8:
            text += "u_strToUTF8";
            break;
        case Form::utf32:
            text += "u_strToUTF32";
            break;
        case Form::page:
            text += "ucnv_fromUChars";
            break;
        case Form::utf16:
            break;
        }
        return text;
    }

private:
    enum class Form {
        utf8,
        utf16,
        utf32,
        page
    };

    static Form formOf(const Page &page) {
        if (!isUnicode(page))
            return Form::page;
        return page.unit == 1 ? Form::utf8 : page.unit == 2 ? Form::utf16 : Form::utf32;
    }

    std::size_t one(const char *text, std::int32_t length, char *room, std::int32_t size,
                    UErrorCode &error) override {
        const bool toUtf16 = targetForm_ == Form::utf16;
        UChar *units = toUtf16 ? reinterpret_cast<UChar *>(room) : pivot();
        const std::int32_t unitRoom = toUtf16 ? size / 2 : pivotSize();
        std::int32_t count = 0;
        const UChar *from = units;
        switch (sourceForm_) {
        case Form::utf8:
            u_strFromUTF8(units, unitRoom, &count, text, length, &error);
            break;
        case Form::utf32:
            u_strFromUTF32(units, unitRoom, &count, reinterpret_cast<const UChar32 *>(text), length / 4,
                           &error);
            break;
        case Form::page:
            count = ucnv_toUChars(source_.get(), units, unitRoom, text, length, &error);
            break;
        case Form::utf16:
            from = reinterpret_cast<const UChar *>(text);
            count = length / 2;
            break;
        }
        std::int32_t written = 0;
        switch (targetForm_) {
        case Form::utf8:
            u_strToUTF8(room, size, &written, from, count, &error);
            break;
        case Form::utf32:
            u_strToUTF32(reinterpret_cast<UChar32 *>(room), size / 4, &written, from, count, &error);
            written *= 4;
            break;
        case Form::page:
            written = ucnv_fromUChars(target_.get(), room, size, from, count, &error);
            break;
        case Form::utf16:
            written = count * 2;
            break;
        }
        return static_cast<std::size_t>(written);
    }

    Form sourceForm_;
    Form targetForm_;
    Converter source_;
    Converter target_;
};

} // namespace

bool openDataFile(const std::string &dataFile) {
    std::FILE *file = std::fopen(dataFile.c_str(), "rb");
    if (file == nullptr)
        return false;
    unsigned char block[65536];
    for (std::size_t count; (count = std::fread(block, 1, sizeof block, file)) > 0;)
        dataBytes.insert(dataBytes.end(), block, block + count);
    std::fclose(file);
    return nlsInit(0, lentMemory.data(), static_cast<std::int32_t>(lentMemory.size()), readData, &handle) ==
           NLS_OK;
}

nlsHandle *openHandle(std::vector<unsigned char> &memory) {
    nlsHandle *opened = nullptr;
    const nlsStatus status =
        nlsInit(0, memory.data(), static_cast<std::int32_t>(memory.size()), readData, &opened);
    if (status != NLS_OK) {
        std::fprintf(stderr, "velnls_bench: opening the data file gives status %u\n", status);
        std::exit(2);
    }
    return opened;
}

nlsHandle *dataHandle() {
    return handle;
}

std::unique_ptr<Contestant> openVelnls(const Page &source, const Page &target) {
    nlsLocale *from = localeFor(source);
    nlsLocale *to = localeFor(target);
    nlsConversion *conversion = nullptr;
    if (from == nullptr || to == nullptr)
        return nullptr;
    const nlsStatus status = nlsCreateConversion(handle, from, to, &conversion);
    if (status != NLS_OK) {
        std::fprintf(stderr, "velnls_bench: conversion %s to %s gives status %u\n", source.velnls,
                     target.velnls, status);
        return nullptr;
    }
    return std::make_unique<Velnls>(conversion, "velnls");
}

std::unique_ptr<Contestant> openIconv(const Page &source, const Page &target) {
    const iconv_t descriptor = iconv_open(target.iconv, source.iconv);
    if (descriptor == iconv_t(-1)) {
        std::fprintf(stderr, "velnls_bench: iconv has no %s to %s\n", source.iconv, target.iconv);
        return nullptr;
    }
    return std::make_unique<Iconv>(descriptor);
}

std::vector<std::unique_ptr<Contestant>> openIcu(const Page &source, const Page &target) {
    std::vector<std::unique_ptr<Contestant>> ways;
    Converter from = openConverter(source);
    Converter to = openConverter(target);
    if (from == nullptr || to == nullptr)
        return ways;
    ways.push_back(std::make_unique<IcuConvertEx>(std::move(from), std::move(to)));
    ways.push_back(std::make_unique<IcuThroughUtf16>(source, target));
    return ways;
}

} // namespace bench
