#include "cleanup/row_matcher.h"

#include "app/text.h"

#include <cstring>
#include <deque>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <utility>

namespace quillon {

namespace {

// Search texts are ASCII: folded in any code page they are their own lower case, and a byte of
// another page folds to no ASCII letter.
unsigned char foldedAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<unsigned char>(c - 'A' + 'a') : static_cast<unsigned char>(c);
}

} // namespace

RowMatcher::RowMatcher(std::span<const WordRow> rows) {
    for (const WordRow& row : rows)
        for (const char* c = row.search; *c; ++c) {
            unsigned char b = foldedAscii(*c);
            if (b >= 0x80) throw std::logic_error("a search text outside ASCII");
            if (!classOf_[b]) classOf_[b] = std::uint8_t(classes_++);
        }
    const std::size_t classes = classes_;

    // The trie of the search texts, then its failure links turned into a complete table.
    std::vector<std::int32_t> trie(classes, -1);
    std::vector<std::uint16_t> fail(1, 0);
    std::vector<std::vector<std::uint16_t>> endingHere(1); // the rows that end at each state
    for (std::size_t r = 0; r < rows.size(); ++r) {
        std::size_t state = 0, length = std::strlen(rows[r].search);
        length_.push_back(std::uint32_t(length));
        if (length == 0) continue;
        for (std::size_t i = 0; i < length; ++i) {
            std::size_t c = classOf_[foldedAscii(rows[r].search[i])];
            if (trie[state * classes + c] < 0) {
                trie[state * classes + c] = std::int32_t(endingHere.size());
                endingHere.emplace_back();
                fail.push_back(0);
                trie.resize(trie.size() + classes, -1);
            }
            state = std::size_t(trie[state * classes + c]);
        }
        endingHere[state].push_back(std::uint16_t(r));
    }
    next_.assign(trie.size(), 0);
    std::deque<std::size_t> queue;
    for (std::size_t c = 0; c < classes; ++c)
        if (trie[c] > 0) {
            next_[c] = std::uint16_t(trie[c]);
            queue.push_back(std::size_t(trie[c]));
        }
    if (endingHere.size() > kEndsRows || rows.size() > 0xFFFF)
        throw std::logic_error("a word table too large for its automaton");
    while (!queue.empty()) {
        std::size_t state = queue.front();
        queue.pop_front();
        const std::vector<std::uint16_t>& inherited = endingHere[fail[state]];
        endingHere[state].insert(endingHere[state].end(), inherited.begin(), inherited.end());
        for (std::size_t c = 0; c < classes; ++c) {
            std::int32_t child = trie[state * classes + c];
            std::uint16_t viaFail = next_[fail[state] * classes + c];
            if (child < 0) {
                next_[state * classes + c] = viaFail;
            } else {
                next_[state * classes + c] = std::uint16_t(child);
                fail[std::size_t(child)] = viaFail;
                queue.push_back(std::size_t(child));
            }
        }
    }
    for (std::uint16_t& to : next_)
        if (!endingHere[to].empty()) to |= kEndsRows;
    for (const std::vector<std::uint16_t>& rowsHere : endingHere) {
        outputStart_.push_back(std::uint32_t(outputRows_.size()));
        outputRows_.insert(outputRows_.end(), rowsHere.begin(), rowsHere.end());
    }
    outputStart_.push_back(std::uint32_t(outputRows_.size()));
}

void RowMatcher::find(std::string_view text, std::vector<Occurrence>& found) const {
    std::size_t state = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        // The text's byte folded in its code page; an ASCII search byte matches nothing else.
        std::uint16_t to = next_[state * classes_ + classOf_[foldCase(static_cast<unsigned char>(text[i]))]];
        state = to & ~kEndsRows;
        if (!(to & kEndsRows)) continue;
        for (std::uint32_t k = outputStart_[state]; k < outputStart_[state + 1]; ++k)
            found.push_back({outputRows_[k], std::uint32_t(i + 1 - length_[outputRows_[k]])});
    }
}

const RowMatcher& matcherFor(std::span<const WordRow> rows) {
    static std::mutex guard;
    static std::vector<std::pair<const WordRow*, std::unique_ptr<RowMatcher>>> built;
    std::lock_guard<std::mutex> lock(guard);
    for (const auto& [first, matcher] : built)
        if (first == rows.data()) return *matcher;
    built.emplace_back(rows.data(), std::make_unique<RowMatcher>(rows));
    return *built.back().second;
}

} // namespace quillon
