// The files below data/ that were taken from ICU are what the ICU of that version gives.
#include "icu_extract.hpp"

#include <gtest/gtest.h>
#include <unicode/uvernum.h>

#include <fstream>
#include <iterator>

namespace velnls::nlsgen::test {
namespace {

Sources realSources() {
    Sources sources;
    sources.charmaps = NLSGEN_CHARMAPS;
    sources.unicode = NLSGEN_UNICODE;
    sources.data = NLSGEN_SOURCE_DIR "/data";
    return sources;
}

void compare(const std::vector<ExtractedFile> &files) {
    for (const ExtractedFile &extracted : files) {
        std::ifstream in(realSources().data + "/" + extracted.name, std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        ASSERT_FALSE(text.empty()) << extracted.name;
        if (text.find("from ICU " U_ICU_VERSION ";") == std::string::npos)
            GTEST_SKIP() << extracted.name << " is from another ICU than " U_ICU_VERSION;
        EXPECT_EQ(text, extracted.text) << extracted.name;
    }
}

TEST(IcuFiles, TablesAreThoseOfIcu) {
    compare(extractTables(realSources()));
}

TEST(IcuFiles, OrdersAreThoseOfIcu) {
    compare(extractOrders(realSources()));
}

} // namespace
} // namespace velnls::nlsgen::test
