#pragma once
// Corrections for a misspelt word among tens of thousands of words, found without comparing it
// with each: an index of the letter pairs each word holds picks the words sharing most pairs with
// it, and an edit distance ranks what the caller makes of them. Words are code-page bytes and
// compared without letter case.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

class NearWords {
public:
    explicit NearWords(std::vector<std::string> words);

    // The positions of up to count words from shortest to longest letters long sharing most letter
    // pairs with word, best first: a word scores the pairs it shares, less the pairs it has beyond
    // the word's own (a longer word is a worse correction, a shorter one may be the stem of an
    // inflected form), plus the letters it begins with in common.
    std::vector<std::size_t> nearest(std::string_view word, std::size_t count, std::size_t shortest,
                                     std::size_t longest) const;
    const std::string& operator[](std::size_t i) const { return words_[i]; }
    std::size_t size() const { return words_.size(); }

private:
    std::vector<std::string> words_;
    std::vector<std::uint32_t> firstPosting_; // per pair key, where its words start in postings_
    std::vector<std::uint32_t> postings_;     // word positions, grouped by pair
    std::vector<std::uint8_t> pairCount_;     // distinct pairs per word
};

// Edits that turn one word into the other, letter case aside, in half edits: a letter put in,
// left out or changed costs 2; the slips of typing, doubling or undoubling a letter and swapping
// two neighbours, cost 1.
int editDistance(std::string_view a, std::string_view b);

} // namespace quillon
