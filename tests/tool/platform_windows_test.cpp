// What the command line does with files and devices of Windows.
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <system_error>

#include "input.hpp"
#include "mapped_file.hpp"
#include "output.hpp"
#include "platform.hpp"
#include "process.hpp"
#include "sorter.hpp"

namespace velnls::tool {
namespace {

std::string readAll(Input &input) {
    std::string all;
    unsigned char buffer[5];
    for (std::size_t count = 0; (count = input.read(buffer, sizeof buffer)) != 0;) {
        all.append(reinterpret_cast<const char *>(buffer), count);
    }
    return all;
}

int errorOf(const std::function<void()> &action) {
    try {
        action();
    } catch (const std::system_error &error) {
        return error.code().value();
    }
    return 0;
}

TEST(WindowsFiles, BytesStayAsTheyAre) {
    const Folder folder;
    const std::string bytes = BYTES("a\r\nb\nc\x1A\0d\r");
    Output output(folder.path("out"));
    output.write(bytes.data(), bytes.size());
    output.commit();
    EXPECT_EQ(readFile(folder.path("out")), bytes);
    Input input(folder.path("out"));
    EXPECT_EQ(readAll(input), bytes);
    EXPECT_EQ(Input::sizeOf(folder.path("out")), bytes.size());
    EXPECT_EQ(folder.names(), std::vector<std::string>{"out"});
}

TEST(WindowsFiles, NamesAreUtf8) {
    const Folder folder;
    const std::string name = folder.path("\xE6\x97\xA5\xE6\x9C\xAC \xC5\xBC.txt");
    Output output(name);
    output.write("text", 4);
    output.commit();
    Input input(name);
    EXPECT_EQ(readAll(input), "text");
    EXPECT_TRUE(platform::isReadable(name));
    const MappedFile mapped(name);
    EXPECT_EQ(mapped.bytes().size(), 4u);
}

TEST(WindowsFiles, OutputStandsBesideTheFileUntilItIsCommitted) {
    const Folder folder;
    const std::string file = folder.write("file", "old");
    {
        Input input(file);
        Output output(file);
        output.write("new", 3);
        EXPECT_FALSE(input.isFileOf(output.descriptor()));
        EXPECT_EQ(readAll(input), "old");
    }
    EXPECT_EQ(readFile(file), "old");
    EXPECT_EQ(folder.names(), std::vector<std::string>{"file"});
}

TEST(WindowsFiles, OneFileIsKnownByBothItsDescriptors) {
    const Folder folder;
    const std::string file = folder.write("file", "text");
    const Input input(file);
    const int other = platform::openToWrite(file);
    ASSERT_GE(other, 0);
    EXPECT_TRUE(input.isFileOf(other));
    platform::closeFile(other);
    const int different = platform::openToWrite(folder.write("different", "text"));
    EXPECT_FALSE(input.isFileOf(different));
    platform::closeFile(different);
}

TEST(WindowsFiles, ReadOnlyFileIsNotReplaced) {
    using std::filesystem::perm_options;
    using std::filesystem::perms;
    const Folder folder;
    const std::string file = folder.write("file", "old");
    constexpr perms kWrite = perms::owner_write | perms::group_write | perms::others_write;
    std::filesystem::permissions(file, kWrite, perm_options::remove);
    EXPECT_EQ(errorOf([&] { const Output output(file); }), EACCES);
    std::filesystem::permissions(file, kWrite, perm_options::add);
}

TEST(WindowsFiles, DeviceIsWrittenInPlace) {
    platform::FileFacts facts;
    ASSERT_TRUE(platform::factsOf("NUL", facts));
    EXPECT_FALSE(facts.regular);
    Output output("NUL");
    output.write("text", 4);
    output.commit();
    Input input("NUL");
    EXPECT_EQ(readAll(input), "");
    EXPECT_EQ(Input::sizeOf("NUL"), std::nullopt);
}

TEST(WindowsFiles, FoldersAndMissingFilesAreToldApart) {
    const Folder folder;
    EXPECT_EQ(errorOf([&] { const Input input(folder.path("")); }), EISDIR);
    EXPECT_EQ(errorOf([&] { const MappedFile file(folder.path("")); }), EISDIR);
    EXPECT_EQ(errorOf([&] { const Output output(folder.path("")); }), EISDIR);
    EXPECT_EQ(errorOf([&] { const Input input(folder.path("missing")); }), ENOENT);
    EXPECT_EQ(errorOf([&] { const Input input(folder.path("missing/file")); }), ENOENT);
    EXPECT_EQ(errorOf([&] { const MappedFile file(folder.path("missing")); }), ENOENT);
    EXPECT_EQ(errorOf([&] { const Output output(folder.path("missing/file")); }), ENOENT);
}

TEST(WindowsFiles, EmptyFileIsMappedAsNothing) {
    const Folder folder;
    EXPECT_EQ(MappedFile(folder.write("empty", "")).bytes().size(), 0u);
}

TEST(WindowsFiles, NamelessFilesAreGoneWhenClosed) {
    const Folder folder;
    const int file = platform::openNameless(folder.path(""));
    ASSERT_GE(file, 0);
    EXPECT_EQ(platform::writeFile(file, "text", 4), 4);
    EXPECT_TRUE(platform::rewindFile(file));
    char text[8];
    EXPECT_EQ(platform::readFile(file, text, sizeof text), 4);
    EXPECT_EQ(platform::readFile(file, text, sizeof text), 0);
    EXPECT_TRUE(platform::closeFile(file));
    EXPECT_EQ(folder.names(), std::vector<std::string>{});
}

TEST(WindowsFiles, SorterSpillsToTheTemporaryFolder) {
    SorterOptions options;
    options.memory = 100;
    Sorter sorter(options);
    for (int i = 0; i < 500; ++i) {
        sorter.add(std::to_string(i % 10), std::to_string(i));
    }
    EXPECT_GT(sorter.spills(), 64u);
    std::vector<std::string> lines;
    sorter.finish([&](std::string_view line) { lines.emplace_back(line); });
    ASSERT_EQ(lines.size(), 500u);
    EXPECT_EQ(lines.front(), "0");
    EXPECT_EQ(lines.back(), "499");
}

} // namespace
} // namespace velnls::tool
