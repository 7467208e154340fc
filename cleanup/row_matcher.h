#pragma once
// Which rows of a word table occur in a text, found in one pass over it: an automaton of every
// row's search text (letters folded, as the replacement compares them) reads each byte once.
#include "cleanup/word_tables.h"

#include <compare>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace quillon {

class RowMatcher {
public:
    // Where a row's search text occurs; ordered by row, then place.
    struct Occurrence {
        std::uint32_t row, start;
        auto operator<=>(const Occurrence&) const = default;
    };

    explicit RowMatcher(std::span<const WordRow> rows);
    // Every occurrence of every row in text, overlapping ones included, in no set order.
    void find(std::string_view text, std::vector<Occurrence>& found) const;

private:
    std::size_t classes_ = 1;           // the bytes the search texts use, and "any other"
    std::vector<std::uint32_t> length_; // of each row's search text
    std::uint8_t classOf_[256] = {};
    // state * classes_ + class: the next state, with kEndsRows set when rows end there; the few
    // states where rows end are looked up only then, which keeps the walk in the cache.
    static constexpr std::uint16_t kEndsRows = 0x8000;
    std::vector<std::uint16_t> next_;
    std::vector<std::uint32_t> outputStart_; // per state, into outputRows_ (one more at the end)
    std::vector<std::uint16_t> outputRows_;
};

// The matcher of a table, built once.
const RowMatcher& matcherFor(std::span<const WordRow> rows);

} // namespace quillon
