// Every code and every code point beside glibc iconv and ICU. Each difference stands in a reviewed list with
// its reason, in differences/<page>.<peer>.txt; one that is not listed fails, and so does one that has
// vanished. VELNLS_WRITE_DIFFERENCES=1 writes the lists anew, keeping the reasons.
#include "harness/compare.hpp"
#include "harness/names.hpp"
#include "peers/difference_list.hpp"
#include "peers/peer.hpp"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

using harness::Bytes;
using peers::Difference;

namespace {

std::string hexOf(const Bytes &bytes) {
    std::string text;
    char digits[4];
    for (const std::uint8_t byte : bytes) {
        std::snprintf(digits, sizeof digits, "%02X", byte);
        text += digits;
    }
    return bytes.empty() ? "-" : text;
}

std::string hexOf(const std::vector<std::uint32_t> &values) {
    std::string text;
    char digits[16];
    for (const std::uint32_t value : values) {
        std::snprintf(digits, sizeof digits, text.empty() ? "%04X" : " %04X", value);
        text += digits;
    }
    return values.empty() ? "-" : text;
}

class PeersTest : public ::testing::TestWithParam<peers::Names> {
protected:
    PeersTest()
        : page_(model::page(GetParam().page)), to_(harness::library().conversion(GetParam().page, "UTF-32")),
          from_(harness::library().conversion("UTF-8", GetParam().page)), utf8_(model::encoding("UTF-8")) {}

    void compareWith(peers::Peer &peer, const std::string &peerKind, const std::string &heading) {
        std::vector<Difference> differences;
        codes(peer, differences);
        codePoints(peer, differences);
        const std::vector<std::string> lines = peers::describe(differences);
        const std::string path =
            std::string(VELNLS_DIFFERENCES_DIR) + "/" + GetParam().page + "." + peerKind + ".txt";
        std::map<std::string, std::string> listed = peers::readList(path);
        if (std::getenv("VELNLS_WRITE_DIFFERENCES") != nullptr) {
            peers::writeList(path, heading, lines, listed);
            return;
        }
        for (const std::string &line : lines) {
            const auto found = listed.find(line);
            EXPECT_TRUE(found != listed.end()) << "not listed in " << path << ": " << line;
            if (found == listed.end())
                continue;
            EXPECT_GT(found->second.size(), 4u) << "no reason in " << path << ": " << line;
            listed.erase(found);
        }
        for (const auto &[line, reason] : listed)
            ADD_FAILURE() << "vanished, but listed in " << path << ": " << line << " (" << reason << ")";
    }

private:
    // Our one code point of a complete code, or none.
    std::vector<std::uint32_t> ourCodePoint(const Bytes &code) {
        Bytes source = code;
        source.push_back(0);
        std::uint32_t out[8] = {};
        std::uint8_t middle[32];
        const nlsStr from = {reinterpret_cast<char *>(source.data()),
                             static_cast<std::uint32_t>(source.size()),
                             static_cast<std::uint32_t>(code.size())};
        nlsStr between = {reinterpret_cast<char *>(middle), sizeof middle, 0};
        nlsStr to = {reinterpret_cast<char *>(out), sizeof out, 0};
        // The first step's substitution is not reported through a chain: U+FFFD tells.
        if (nlsConvertNLS(to_, &from, &between, &to) != NLS_OK || to.length != 4 ||
            out[0] == model::kReplacement)
            return {};
        return {out[0]};
    }

    Bytes ourCode(std::uint32_t codePoint) {
        Bytes source;
        model::appendEncoded(source, utf8_, codePoint);
        std::uint8_t out[8];
        const harness::BareResult result = harness::convertBare(
            from_, source.data(), static_cast<std::uint32_t>(source.size()), out, sizeof out);
        if (result.status != NLS_OK)
            return {};
        return Bytes(out, out + result.written);
    }

    void note(std::vector<Difference> &differences, const char *direction, std::uint32_t input,
              const std::string &ours, const std::string &theirs) {
        if (ours != theirs)
            differences.push_back({direction, input, ours, theirs});
    }

    void codes(peers::Peer &peer, std::vector<Difference> &differences) {
        bool single[256];
        for (std::uint32_t byte = 0; byte < 256; ++byte) {
            const Bytes code = {static_cast<std::uint8_t>(byte)};
            const std::vector<std::uint32_t> theirs = peer.toUnicode(code);
            single[byte] = !theirs.empty();
            const bool lead = page_.trailCount[byte] != 0;
            note(differences, "to-unicode", byte,
                 hexOf(lead ? std::vector<std::uint32_t>() : ourCodePoint(code)), hexOf(theirs));
        }
        if (!page_.multibyte)
            return;
        for (std::uint32_t value = 0x8000; value < 0x10000; ++value) {
            const Bytes code = {static_cast<std::uint8_t>(value >> 8), static_cast<std::uint8_t>(value)};
            const bool lead = page_.trailCount[code[0]] != 0;
            const std::vector<std::uint32_t> ours =
                lead && code[1] != 0 ? ourCodePoint(code) : std::vector<std::uint32_t>();
            // Two characters of one byte each are no double-byte code.
            const std::vector<std::uint32_t> theirs =
                single[code[0]] ? std::vector<std::uint32_t>() : peer.toUnicode(code);
            note(differences, "to-unicode", value, hexOf(ours), hexOf(theirs));
        }
    }

    void codePoints(peers::Peer &peer, std::vector<Difference> &differences) {
        for (std::uint32_t codePoint = 0; codePoint < 0x110000; ++codePoint)
            if (codePoint < 0xD800 || codePoint > 0xDFFF)
                note(differences, "from-unicode", codePoint, hexOf(ourCode(codePoint)),
                     hexOf(peer.fromUnicode(codePoint)));
    }

    const model::Page &page_;
    nlsConversion *to_;
    nlsConversion *from_;
    model::Encoding utf8_;
};

TEST_P(PeersTest, iconvDiffersWhereListedOnly) {
    if (GetParam().iconv == nullptr)
        return; // the C library has no such page
    const std::unique_ptr<peers::Peer> peer = peers::openIconv(GetParam().iconv);
    ASSERT_NE(peer, nullptr) << GetParam().iconv;
    compareWith(*peer, "iconv",
                std::string(GetParam().page) + " and " + GetParam().iconv + " of iconv, " +
                    peers::iconvVersion());
}

#ifdef VELNLS_TESTS_HAVE_ICU
TEST_P(PeersTest, icuDiffersWhereListedOnly) {
    if (GetParam().icu == nullptr)
        return; // ICU has no such page
    const std::unique_ptr<peers::Peer> peer = peers::openIcu(GetParam().icu);
    ASSERT_NE(peer, nullptr) << GetParam().icu;
    compareWith(*peer, "icu",
                std::string(GetParam().page) + " and " + GetParam().icu + ", " + peers::icuVersion());
}
#endif

std::string peersTestName(const ::testing::TestParamInfo<peers::Names> &info) {
    return harness::testName(info.param.page);
}

INSTANTIATE_TEST_SUITE_P(Pages, PeersTest, ::testing::ValuesIn(peers::peerNames()), peersTestName);

TEST(Peers, theManualStatesNamesAndNumbersOfEveryPage) {
    std::ifstream manual(VELNLS_DIFFERENCES_MANUAL);
    std::string text((std::istreambuf_iterator<char>(manual)), std::istreambuf_iterator<char>());
    const auto cells = [](const char *page, const char *name, const char *kind) {
        if (name == nullptr)
            return std::string(" - | - |");
        const std::string path = std::string(VELNLS_DIFFERENCES_DIR) + "/" + page + "." + kind + ".txt";
        return std::string(" ") + name + " | " + peers::totals(peers::readList(path)) + " |";
    };
    for (const peers::Names &names : peers::peerNames()) {
        const std::string row = std::string("| ") + names.page + " |" +
                                cells(names.page, names.iconv, "iconv") +
                                cells(names.page, names.icu, "icu") + "\n";
        EXPECT_NE(text.find(row), std::string::npos) << "docs/differences.md lacks: " << row;
    }
    EXPECT_EQ(peers::peerNames().size(), model::allPages().size());
}

} // namespace
