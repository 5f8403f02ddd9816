// A system whose answers about the thread's locale the test decides.
#pragma once

#include <cstddef>
#include <string>

namespace charset {

struct PretendedSystem {
    std::string page = "1252";
    std::string country = "Germany";
    bool terminated = true; // whether answers come with their NUL, counted
    bool silent = false;    // answers nothing
    // What the library asked with.
    int pageQueries = 0;
    int countryQueries = 0;
    std::size_t pageRoom = 0;
    std::size_t countryRoom = 0;
};

// The one of the test that is running; a new one for every test.
PretendedSystem &pretendedSystem();
void newPretendedSystem();

} // namespace charset
