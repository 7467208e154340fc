#pragma once
#include <span>

namespace quillon {

// One row of a word table: every occurrence of search (ignoring case) becomes replacement.
struct WordRow {
    const char* search;
    const char* replacement;
    bool templeOnly = false; // applies only when "temple" is to be capitalised
};

// British to American spelling (40 rows).
std::span<const WordRow> americanSpelling();
// The game world's proper names (400 rows), always applied.
std::span<const WordRow> properNames();
// Modern slang and swearing (40 rows).
std::span<const WordRow> slang();

} // namespace quillon
