#include "workbench/near_words.h"

#include "app/text.h"

#include <algorithm>
#include <array>

namespace quillon {

namespace {

// Longer words are not indexed: no dictionary word is, and a pair count must fit a byte.
constexpr std::size_t kLongest = 60;
constexpr std::size_t kPairKeys = 256 * 256;

// The distinct letter pairs of a word, its first and last letter paired with a boundary (0).
std::size_t pairsOf(std::string_view word, std::array<std::uint16_t, kLongest + 1>& pairs) {
    std::size_t n = 0;
    unsigned previous = 0;
    for (char c : word) {
        unsigned letter = foldCase(static_cast<unsigned char>(c));
        pairs[n++] = std::uint16_t(previous << 8 | letter);
        previous = letter;
    }
    pairs[n++] = std::uint16_t(previous << 8);
    std::sort(pairs.begin(), pairs.begin() + n);
    return std::size_t(std::unique(pairs.begin(), pairs.begin() + n) - pairs.begin());
}

std::size_t commonStart(std::string_view a, std::string_view b) {
    std::size_t n = 0;
    while (n < a.size() && n < b.size() &&
           foldCase(static_cast<unsigned char>(a[n])) == foldCase(static_cast<unsigned char>(b[n])))
        ++n;
    return n;
}

} // namespace

NearWords::NearWords(std::vector<std::string> words) : words_(std::move(words)) {
    std::erase_if(words_, [](const std::string& w) { return w.empty() || w.size() > kLongest; });
    // Shortest first: the words of a length range are then a range of positions in every pair's
    // postings.
    std::stable_sort(words_.begin(), words_.end(),
                     [](const std::string& a, const std::string& b) { return a.size() < b.size(); });
    std::array<std::uint16_t, kLongest + 1> pairs;
    firstPosting_.assign(kPairKeys + 1, 0);
    pairCount_.resize(words_.size());
    for (std::size_t i = 0; i < words_.size(); ++i) {
        std::size_t n = pairsOf(words_[i], pairs);
        pairCount_[i] = std::uint8_t(n);
        for (std::size_t k = 0; k < n; ++k)
            ++firstPosting_[pairs[k] + 1];
    }
    for (std::size_t key = 0; key < kPairKeys; ++key)
        firstPosting_[key + 1] += firstPosting_[key];
    postings_.resize(firstPosting_[kPairKeys]);
    std::vector<std::uint32_t> next(firstPosting_.begin(), firstPosting_.end() - 1);
    for (std::size_t i = 0; i < words_.size(); ++i) {
        std::size_t n = pairsOf(words_[i], pairs);
        for (std::size_t k = 0; k < n; ++k)
            postings_[next[pairs[k]]++] = std::uint32_t(i);
    }
}

std::vector<std::size_t> NearWords::nearest(std::string_view word, std::size_t count, std::size_t shortest,
                                            std::size_t longest) const {
    if (word.empty() || word.size() > kLongest || words_.empty()) return {};
    auto byLength = [](const std::string& w, std::size_t length) { return w.size() < length; };
    auto first =
        std::uint32_t(std::lower_bound(words_.begin(), words_.end(), shortest, byLength) - words_.begin());
    auto end =
        std::uint32_t(std::lower_bound(words_.begin(), words_.end(), longest + 1, byLength) - words_.begin());
    std::array<std::uint16_t, kLongest + 1> pairs;
    std::size_t own = pairsOf(word, pairs);
    std::vector<std::uint8_t> shared(words_.size(), 0);
    std::vector<std::uint32_t> touched;
    for (std::size_t k = 0; k < own; ++k) {
        auto from = postings_.begin() + firstPosting_[pairs[k]],
             to = postings_.begin() + firstPosting_[pairs[k] + 1];
        for (auto at = std::lower_bound(from, to, first); at != to && *at < end; ++at)
            if (shared[*at]++ == 0) touched.push_back(*at);
    }

    struct Scored {
        int score;
        std::size_t lengthGap;
        std::uint32_t word;
    };
    std::vector<Scored> scored;
    for (std::uint32_t i : touched) {
        if (shared[i] * 3 < own) continue; // shares too little to be a correction
        int excess = std::max(0, int(pairCount_[i]) - int(own));
        int start = int(std::min<std::size_t>(commonStart(word, words_[i]), 4));
        std::size_t gap =
            words_[i].size() > word.size() ? words_[i].size() - word.size() : word.size() - words_[i].size();
        scored.push_back({2 * shared[i] - excess + start, gap, i});
    }
    auto better = [](const Scored& a, const Scored& b) {
        if (a.score != b.score) return a.score > b.score;
        if (a.lengthGap != b.lengthGap) return a.lengthGap < b.lengthGap;
        return a.word < b.word;
    };
    std::size_t kept = std::min(count, scored.size());
    std::partial_sort(scored.begin(), scored.begin() + std::ptrdiff_t(kept), scored.end(), better);
    std::vector<std::size_t> out;
    for (std::size_t k = 0; k < kept; ++k)
        out.push_back(scored[k].word);
    return out;
}

int editDistance(std::string_view a, std::string_view b) {
    auto at = [](std::string_view s, std::size_t i) { return foldCase(static_cast<unsigned char>(s[i])); };
    // A letter next to its own double costs half an edit to put in or leave out.
    auto single = [&](std::string_view s, std::size_t i) {
        return (i > 0 && at(s, i) == at(s, i - 1)) || (i + 1 < s.size() && at(s, i) == at(s, i + 1)) ? 1 : 2;
    };
    if (a.size() > kLongest || b.size() > kLongest) return int(2 * std::max(a.size(), b.size()));
    std::size_t n = a.size(), m = b.size();
    // Three rows of the table are all a swap looks back at.
    std::array<std::array<int, kLongest + 1>, 3> rows;
    auto row = [&](std::size_t i) -> std::array<int, kLongest + 1>& { return rows[i % 3]; };
    row(0)[0] = 0;
    for (std::size_t j = 1; j <= m; ++j)
        row(0)[j] = row(0)[j - 1] + single(b, j - 1);
    for (std::size_t i = 1; i <= n; ++i) {
        row(i)[0] = row(i - 1)[0] + single(a, i - 1);
        for (std::size_t j = 1; j <= m; ++j) {
            int best = row(i - 1)[j - 1] + (at(a, i - 1) == at(b, j - 1) ? 0 : 2);
            best = std::min(best, row(i - 1)[j] + single(a, i - 1));
            best = std::min(best, row(i)[j - 1] + single(b, j - 1));
            if (i > 1 && j > 1 && at(a, i - 1) == at(b, j - 2) && at(a, i - 2) == at(b, j - 1))
                best = std::min(best, row(i - 2)[j - 2] + 1);
            row(i)[j] = best;
        }
    }
    return row(n)[m];
}

} // namespace quillon
