// Text of any bytes through case mapping and counting, into destinations of exact size.
#include "fuzz_text.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fuzz::Input input(data, size);
    nlsLocale *const locale = fuzz::localeOf(input.byte());
    const std::uint32_t room = input.byte();
    const auto number = static_cast<std::int32_t>(static_cast<std::int8_t>(input.byte()));
    const auto start = static_cast<std::int32_t>(static_cast<std::int8_t>(input.byte()));
    const std::vector<std::uint8_t> text = input.bytes(2000);
    fuzz::mapEveryWay(locale, text, room);

    fuzz::Terminated source(text);
    const auto length = static_cast<std::uint32_t>(source.length());
    std::uint32_t count = 77;
    nlsCountBytes(locale, source.get(), number, &count);
    fuzz::require(count < length + 8);
    nlsStatus status = nlsCountChars(locale, source.get(), number, &count);
    fuzz::require(count <= length && (number >= 0 || (status == NLS_E_NULLARG && count == 0)));
    status = nlsCountColumns(locale, source.get(), number, &count);
    fuzz::require(count <= 2 * length && (status == NLS_OK || status == NLS_E_NULLARG));
    fuzz::Block block(room + 1U);
    nlsStr out{reinterpret_cast<char *>(block.data()), room, 0};
    status = nlsSubstr(locale, source.get(), start, number, &count, &out);
    fuzz::require(status != NLS_OK || (out.length <= room && count <= out.length));
    nlsExtract(locale, source.get(), static_cast<std::uint32_t>(number), &out);

    // Exactly these bytes, NULs and all.
    fuzz::Block bytes(text.size());
    std::copy(text.begin(), text.end(), bytes.data());
    for (const std::uint32_t byteOrder : {0U, 1U}) {
        nlsValidateString(locale, bytes.data(), static_cast<std::int32_t>(text.size()), byteOrder, &count);
        fuzz::require(count <= text.size());
    }
    return 0;
}
