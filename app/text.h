#pragma once
// Byte texts with the Windows-1252 meaning of each byte. Case-insensitive matching folds ASCII
// letters and the code page's accented letter pairs.
#include <cstddef>
#include <string>
#include <string_view>

namespace quillon {

// The lower-case form of a Windows-1252 byte.
unsigned char foldCase(unsigned char c);
bool equalsIgnoreCase(std::string_view a, std::string_view b);
// Position of needle in hay at or after from, ignoring case; npos when absent.
std::size_t findIgnoreCase(std::string_view hay, std::string_view needle, std::size_t from = 0);
bool containsIgnoreCase(std::string_view hay, std::string_view needle);
// Replaces every occurrence of search (ignoring case), left to right, without rescanning what
// was inserted. Returns the number of replacements.
std::size_t replaceAllIgnoreCase(std::string& text, std::string_view search, std::string_view replacement);
// The first letter of every blank-separated word in upper case, the rest in lower case.
std::string properCase(std::string_view text);
// Matches a pattern in which "*" stands for any run of characters, ignoring case.
bool wildcardMatch(std::string_view text, std::string_view pattern);
// The key under which a text is looked up ignoring case.
std::string foldedKey(std::string_view text);

} // namespace quillon
