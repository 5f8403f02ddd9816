// Locales of every shape, each beside the twin that says what its calls should answer.
#pragma once

#include "harness/world_file.hpp"
#include "library_fixture.hpp"
#include "model/locale.hpp"
#include "random.hpp"

#include <string>
#include <vector>

namespace kit {

// What the text of a page looks like.
enum class Script {
    Latin, // 1252
    Thai,  // TIS-620
    ShiftJis,
    Euc,
    Utf8,
    Long, // a page with characters of one to eight bytes
};

struct Kit {
    std::string name;
    Script script;
    nlsLocale *locale;
    model::Locale twin;
};

class World {
public:
    explicit World(std::size_t misalignment = 0);

    fixture::Library library;
    std::vector<Kit> kits; // those with a collation

    [[nodiscard]] const Kit &operator[](const std::string &name) const;

private:
    void add(const std::string &name, Script script, const char *page, const char *collation,
             const char *caseTable);
};

// Text without NUL.
class TextMaker {
public:
    explicit TextMaker(std::uint32_t seed) : random(seed) {}

    Bytes valid(Script script, unsigned characters);
    Bytes any(Script script, unsigned characters);   // valid, corrupted or plain rubbish
    Bytes variant(Script script, const Bytes &text); // much like the given one
    Bytes corrupted(Bytes text);

    fixture::Random random;

private:
    Bytes character(Script script);
};

} // namespace kit
