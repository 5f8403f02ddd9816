// The data file behind these tests: pages that ICU converts, and a page whose collations are a site's own.
#pragma once

#include "data_file.hpp"
#include "library_fixture.hpp"

namespace world {

using fixture::Bytes;

// Pages: UTF-8, UTF-16, UTF-16BE, and by ICU X, WIDE, BROAD, MISSING; P has weights, exits ("site", "other")
// and BASIC; LENDER lends the exit "lent" to BORROWER by a byte table.
fixture::DataFile file();

// A handle over it.
class Open : public fixture::Library {
public:
    Open() : Library(file()) {}
};

// The collation's weights, by their place in a record of the library.
Bytes area(const nlsLocale *locale, bool sensitive);
std::int32_t kind(const nlsLocale *locale);

// The pattern that the weights of P's exits follow.
unsigned char sensitiveWeight(unsigned byte);
unsigned char insensitiveWeight(unsigned byte);

} // namespace world
