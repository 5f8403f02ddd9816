// ICU as a peer: a table look-up without fallbacks and without substitution.
#include "peer.hpp"

#ifdef VELNLS_TESTS_HAVE_ICU
#include <unicode/ucnv.h>
#include <unicode/utf16.h>
#include <unicode/uversion.h>
#endif

namespace peers {

#ifdef VELNLS_TESTS_HAVE_ICU

namespace {

class IcuPeer : public Peer {
public:
    explicit IcuPeer(const std::string &name) {
        UErrorCode error = U_ZERO_ERROR;
        converter_ = ucnv_open(name.c_str(), &error);
        if (converter_ == nullptr)
            return;
        ucnv_setFallback(converter_, 0);
        ucnv_setToUCallBack(converter_, UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
        ucnv_setFromUCallBack(converter_, UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
    }
    ~IcuPeer() override {
        if (converter_ != nullptr)
            ucnv_close(converter_);
    }
    IcuPeer(const IcuPeer &) = delete;
    IcuPeer &operator=(const IcuPeer &) = delete;

    [[nodiscard]] bool isOpen() const {
        return converter_ != nullptr;
    }

    std::vector<std::uint32_t> toUnicode(const std::vector<std::uint8_t> &code) override {
        UChar units[16];
        UErrorCode error = U_ZERO_ERROR;
        const std::int32_t count =
            ucnv_toUChars(converter_, units, 16, reinterpret_cast<const char *>(code.data()),
                          static_cast<std::int32_t>(code.size()), &error);
        std::vector<std::uint32_t> values;
        if (U_FAILURE(error) != 0)
            return values;
        for (std::int32_t i = 0; i < count;) {
            UChar32 value = 0;
            U16_NEXT(units, i, count, value);
            values.push_back(static_cast<std::uint32_t>(value));
        }
        return values;
    }

    // Default-ignorable characters come out as nothing, with success: that is not a mapping either.
    std::vector<std::uint8_t> fromUnicode(std::uint32_t codePoint) override {
        UChar units[2];
        std::int32_t length = 0;
        U16_APPEND_UNSAFE(units, length, static_cast<UChar32>(codePoint));
        char bytes[16];
        UErrorCode error = U_ZERO_ERROR;
        const std::int32_t count = ucnv_fromUChars(converter_, bytes, sizeof bytes, units, length, &error);
        if (U_FAILURE(error) != 0)
            return {};
        return std::vector<std::uint8_t>(bytes, bytes + count);
    }

private:
    UConverter *converter_ = nullptr;
};

} // namespace

std::unique_ptr<Peer> openIcu(const std::string &name) {
    auto peer = std::make_unique<IcuPeer>(name);
    if (!peer->isOpen())
        return nullptr;
    return peer;
}

std::string icuVersion() {
    UVersionInfo version;
    u_getVersion(version);
    return "ICU " + std::to_string(version[0]) + "." + std::to_string(version[1]);
}

#else

std::unique_ptr<Peer> openIcu(const std::string &) {
    return nullptr;
}

std::string icuVersion() {
    return "no ICU";
}

#endif

} // namespace peers
