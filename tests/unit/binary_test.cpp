// The shared library as a file: what it exports, what it needs, what it could write to.
#include <gtest/gtest.h>

#include <cstdio>
#include <elf.h>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace {

// A 64-bit ELF file, read by its section headers.
class Binary {
public:
    explicit Binary(const std::string &path) {
        std::ifstream file(path, std::ios::binary);
        data_.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
        const auto &header = at<Elf64_Ehdr>(0);
        if (data_.size() < sizeof header || std::string(data_.data(), 4) != "\177ELF")
            return;
        const auto &names = at<Elf64_Shdr>(header.e_shoff + header.e_shstrndx * sizeof(Elf64_Shdr));
        for (unsigned i = 0; i < header.e_shnum; ++i) {
            const auto &section = at<Elf64_Shdr>(header.e_shoff + i * sizeof(Elf64_Shdr));
            sections[&data_[names.sh_offset + section.sh_name]] = &section;
        }
    }

    [[nodiscard]] bool readable() const {
        return sections.count(".dynsym") != 0 && sections.count(".dynamic") != 0;
    }

    struct Symbol {
        std::string name;
        bool defined;
        unsigned version; // 0 local, 1 global, others by the version section
    };
    [[nodiscard]] std::vector<Symbol> dynamicSymbols() const {
        const Elf64_Shdr &table = *sections.at(".dynsym");
        const Elf64_Shdr &strings = *sections.at(".dynstr");
        std::vector<Symbol> all;
        for (std::size_t i = 1; i < table.sh_size / sizeof(Elf64_Sym); ++i) {
            const auto &symbol = at<Elf64_Sym>(table.sh_offset + i * sizeof(Elf64_Sym));
            unsigned version = 1;
            if (sections.count(".gnu.version") != 0)
                version = at<Elf64_Half>(sections.at(".gnu.version")->sh_offset + i * 2) & 0x7FFFU;
            all.push_back(
                {&data_[strings.sh_offset + symbol.st_name], symbol.st_shndx != SHN_UNDEF, version});
        }
        return all;
    }
    [[nodiscard]] std::vector<std::string> needed() const {
        const Elf64_Shdr &table = *sections.at(".dynamic");
        const Elf64_Shdr &strings = *sections.at(".dynstr");
        std::vector<std::string> all;
        for (std::size_t i = 0; i < table.sh_size / sizeof(Elf64_Dyn); ++i) {
            const auto &entry = at<Elf64_Dyn>(table.sh_offset + i * sizeof(Elf64_Dyn));
            if (entry.d_tag == DT_NEEDED)
                all.emplace_back(&data_[strings.sh_offset + entry.d_un.d_val]);
        }
        return all;
    }
    // Names of the version nodes that the library defines, its own name aside.
    [[nodiscard]] std::set<std::string> versions() const {
        std::set<std::string> all;
        if (sections.count(".gnu.version_d") == 0)
            return all;
        const Elf64_Shdr &table = *sections.at(".gnu.version_d");
        const Elf64_Shdr &strings = *sections.at(".dynstr");
        std::size_t offset = table.sh_offset;
        for (unsigned i = 0; i < table.sh_info; ++i) {
            const auto &definition = at<Elf64_Verdef>(offset);
            const auto &name = at<Elf64_Verdaux>(offset + definition.vd_aux);
            if ((definition.vd_flags & VER_FLG_BASE) == 0)
                all.insert(&data_[strings.sh_offset + name.vda_name]);
            offset += definition.vd_next;
        }
        return all;
    }
    [[nodiscard]] std::uint64_t sizeOf(const std::string &section) const {
        const auto found = sections.find(section);
        return found == sections.end() ? 0 : found->second->sh_size;
    }

    std::map<std::string, const Elf64_Shdr *> sections;

private:
    template <typename T>
    [[nodiscard]] const T &at(std::size_t offset) const {
        return *reinterpret_cast<const T *>(&data_.at(offset));
    }

    std::vector<char> data_;
};

// The names that stand in a file where the pattern's first group is.
std::set<std::string> namesIn(const char *path, const char *pattern) {
    std::ifstream file(path);
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    std::set<std::string> names;
    const std::regex name(pattern);
    for (std::sregex_iterator at(text.begin(), text.end(), name), end; at != end; ++at)
        names.insert(at->str(1));
    return names;
}

// Sanitizers bring their own symbols, libraries and data.
class BinaryFile : public testing::Test {
protected:
    void SetUp() override {
        if (VELNLS_SANITIZED)
            GTEST_SKIP() << "built with sanitizers";
        ASSERT_TRUE(binary_.readable()) << VELNLS_LIBRARY_FILE;
    }
    Binary binary_{VELNLS_LIBRARY_FILE};
};

TEST_F(BinaryFile, ExportsTheInterfaceAndNothingElse) {
    std::set<std::string> exported;
    for (const Binary::Symbol &symbol : binary_.dynamicSymbols())
        if (symbol.defined && symbol.name.rfind("VELNLS_", 0) != 0) // the version node itself
            exported.insert(symbol.name);
    const std::set<std::string> declared = namesIn(VELNLS_HEADER, "NLS_API nlsStatus (nls[A-Za-z0-9]+)");
    EXPECT_EQ(declared.size(), 56U);
    EXPECT_EQ(exported, declared);
    EXPECT_EQ(namesIn(VELNLS_VERSION_SCRIPT, "(nls[A-Za-z0-9]+);"), declared);
}

TEST_F(BinaryFile, ExportsStandUnderOneVersion) {
    EXPECT_EQ(binary_.versions(), std::set<std::string>{"VELNLS_1"});
    std::set<unsigned> numbers;
    for (const Binary::Symbol &symbol : binary_.dynamicSymbols())
        if (symbol.defined && symbol.name.rfind("nls", 0) == 0)
            numbers.insert(symbol.version);
    EXPECT_EQ(numbers.size(), 1U);
    EXPECT_GT(*numbers.begin(), 1U) << "not the unversioned one";
}

TEST_F(BinaryFile, NeedsTheCLibraryAlone) {
    EXPECT_EQ(binary_.needed(), std::vector<std::string>{"libc.so.6"});
}

TEST_F(BinaryFile, AllocatesForLongTextsUnderIcuAlonePrintsAndAbortsNever) {
    static const std::regex allowed(
        // Memory and text of the C library, and what every shared library refers to.
        "mem[a-z]+|str[a-z]+|__mem[a-z]+_chk|__str[a-z]+_chk|getenv|dl[a-z]+|[a-z]*locale[a-z_]*|nl_langinfo."
        "*|"
        "__stack_chk_fail|__cxa_finalize|__gmon_start__|_ITM_.*|__tls_get_addr|__ctype_[a-z_]+|bcmp|toupper|"
        "tolower|"
        "access|stat|__xstat|qsort|bsearch|__x86_get_cpuid_feature_leaf|"
        // Texts of more than 2000 bytes under ICU; waiting for the thread that binds ICU.
        "malloc|free|sched_yield");
    for (const Binary::Symbol &symbol : binary_.dynamicSymbols())
        if (!symbol.defined) {
            EXPECT_TRUE(std::regex_match(symbol.name, allowed)) << "refers to " << symbol.name;
        }
    for (const Binary::Symbol &symbol : binary_.dynamicSymbols())
        for (const char *const never :
             {"calloc", "realloc", "printf", "puts", "abort", "exit", "write", "_Znwm", "_ZdlPv"})
            EXPECT_NE(symbol.name, never);
}

TEST_F(BinaryFile, WritableDataIsAFewProcessWideWords) {
    // .data.rel.ro and the tables of the loader are read-only once the library is loaded.
    // 152 of them are the addresses of ICU's functions.
    EXPECT_LE(binary_.sizeOf(".data") + binary_.sizeOf(".bss"), 320U);
    EXPECT_EQ(binary_.sizeOf(".tdata") + binary_.sizeOf(".tbss"), 0U);
}

} // namespace
