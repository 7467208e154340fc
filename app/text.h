#pragma once
// Byte texts with the meaning of each byte in the active code page (Windows-1252 unless set
// otherwise, see encoding.h). Case-insensitive matching folds ASCII letters and the code page's
// letter pairs.
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace quillon {

namespace detail {
// Windows-1252's letter pairs: ASCII, the accented letters from 0xC0 (but for 0xD7, the
// multiplication sign) and the four pairs of the 0x80-0x9F row.
constexpr std::array<unsigned char, 256> caseTable(bool toLower) {
    std::array<unsigned char, 256> t{};
    for (int c = 0; c < 256; ++c)
        t[c] = static_cast<unsigned char>(c);
    auto pair = [&](int up, int low) {
        if (toLower)
            t[up] = static_cast<unsigned char>(low);
        else
            t[low] = static_cast<unsigned char>(up);
    };
    for (int c = 'A'; c <= 'Z'; ++c)
        pair(c, c + 32);
    pair(0x8A, 0x9A), pair(0x8C, 0x9C), pair(0x8E, 0x9E), pair(0x9F, 0xFF);
    for (int c = 0xC0; c <= 0xDE; ++c)
        if (c != 0xD7) pair(c, c + 32);
    return t;
}
inline constexpr std::array<unsigned char, 256> kLower1252 = caseTable(true);
inline constexpr std::array<unsigned char, 256> kUpper1252 = caseTable(false);
// The active code page's tables (set with setActiveCodePage).
extern std::array<unsigned char, 256> activeLower, activeUpper;
} // namespace detail

// The lower-case form of a byte in the active code page.
inline unsigned char foldCase(unsigned char c) {
    return detail::activeLower[c];
}
// The upper-case form of a byte in the active code page.
inline unsigned char upperCase(unsigned char c) {
    return detail::activeUpper[c];
}
bool equalsIgnoreCase(std::string_view a, std::string_view b);
// Position of needle in hay at or after from, ignoring case; npos when absent.
std::size_t findIgnoreCase(std::string_view hay, std::string_view needle, std::size_t from = 0);
bool containsIgnoreCase(std::string_view hay, std::string_view needle);

// Finds a non-empty needle again and again, ignoring case, at rising positions of a text that
// does not change meanwhile. Candidates are found by their first byte in either case, and the
// next place of each case is kept between searches, so that a case the text lacks is looked for
// once, not once per hit: a whole walk is linear.
class CaselessFinder {
public:
    CaselessFinder(std::string_view hay, std::string_view needle);
    // The first match at or after from; npos when there is none.
    std::size_t find(std::size_t from);

private:
    std::size_t next(char c, std::size_t at) const;

    static constexpr std::size_t kUnknown = std::string_view::npos;
    std::string_view hay_, needle_, rest_;
    char lower_, upper_;
    std::size_t end_; // candidates start before this
    bool exact_;      // the needle holds no letter
    std::size_t nextLower_ = kUnknown, nextUpper_ = kUnknown;
};
// Replaces every occurrence of search (ignoring case), left to right, without rescanning what
// was inserted. Returns the number of replacements.
std::size_t replaceAllIgnoreCase(std::string& text, std::string_view search, std::string_view replacement);
// The first letter of every blank-separated word in upper case, the rest in lower case.
std::string properCase(std::string_view text);
// A text from a data or text file as a message shows it: cut to limit bytes, with its full
// length stated when cut ("abc... (52,000,000 characters)").
std::string readableExcerpt(std::string_view text, std::size_t limit = 80);
// Matches a pattern in which "*" stands for any run of characters, ignoring case.
bool wildcardMatch(std::string_view text, std::string_view pattern);
// The key under which a text is looked up ignoring case.
std::string foldedKey(std::string_view text);

} // namespace quillon
