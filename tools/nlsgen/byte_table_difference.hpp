// What is different between two tables of 256 entries of one code page, in terms of its characters: a
// character that has another byte in the other file is still the same.
#pragma once

#include "difference_report.hpp"
#include "page_decoder.hpp"

#include <span>

namespace velnls::nlsgen {

struct PageBytes {
    const PageDecoder &before;
    const PageDecoder &after;
};

using ByteTable = const std::uint8_t *; // by byte

// "U+00E4 LATIN SMALL LETTER A WITH DIAERESIS", or "byte E4" where the byte stands for nothing.
std::string meaningText(ByteMeaning meaning, const DifferenceReport &report);

// Numbers of characters: classes, attributes.
void reportNumbers(const PageBytes &bytes, ByteTable was, ByteTable is, const std::string &title,
                   DifferenceReport &report);

// Characters that characters become, of the same or another page: case, direct conversion.
void reportTargets(const PageBytes &bytes, const PageBytes &targets, ByteTable was, ByteTable is,
                   const std::string &title, DifferenceReport &report);

// Weights: characters that moved relative to the others, or began or ceased to sort as "ss". Other weights in
// the same order are one line.
void reportOrder(const PageBytes &bytes, ByteTable was, ByteTable is, const std::string &title,
                 DifferenceReport &report);

} // namespace velnls::nlsgen
