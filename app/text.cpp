#include "app/text.h"

#include "writer/byte_sink.h"

#include <algorithm>
#include <cstring>

namespace quillon {

bool equalsIgnoreCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (foldCase(static_cast<unsigned char>(a[i])) != foldCase(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

CaselessFinder::CaselessFinder(std::string_view hay, std::string_view needle)
    : hay_(hay), needle_(needle), rest_(needle.substr(1)),
      lower_(char(foldCase(static_cast<unsigned char>(needle[0])))),
      upper_(char(upperCase(static_cast<unsigned char>(lower_)))),
      end_(hay.size() >= needle.size() ? hay.size() - needle.size() + 1 : 0),
      exact_(std::all_of(needle.begin(), needle.end(), [](char c) {
          auto b = static_cast<unsigned char>(c);
          return foldCase(b) == b && upperCase(b) == b;
      })) {}

std::size_t CaselessFinder::find(std::size_t from) {
    if (from >= end_) return std::string_view::npos;
    if (exact_) {
        // No letter to fold (blanks and punctuation, as most clean-up steps look for): the
        // library's search for a byte string is the fastest there is.
        const void* found = ::memmem(hay_.data() + from, hay_.size() - from, needle_.data(), needle_.size());
        return found ? std::size_t(static_cast<const char*>(found) - hay_.data()) : std::string_view::npos;
    }
    if (nextLower_ == kUnknown || nextLower_ < from) nextLower_ = next(lower_, from);
    if (nextUpper_ == kUnknown || nextUpper_ < from)
        nextUpper_ = lower_ == upper_ ? end_ : next(upper_, from);
    while (nextLower_ != end_ || nextUpper_ != end_) {
        std::size_t at = std::min(nextLower_, nextUpper_);
        if (equalsIgnoreCase(hay_.substr(at + 1, rest_.size()), rest_)) return at;
        if (at == nextLower_) nextLower_ = next(lower_, at + 1);
        if (at == nextUpper_) nextUpper_ = next(upper_, at + 1);
    }
    return std::string_view::npos;
}

std::size_t CaselessFinder::next(char c, std::size_t at) const {
    const void* found = std::memchr(hay_.data() + at, c, end_ - at);
    return found ? std::size_t(static_cast<const char*>(found) - hay_.data()) : end_;
}

std::size_t findIgnoreCase(std::string_view hay, std::string_view needle, std::size_t from) {
    if (needle.empty()) return from <= hay.size() ? from : std::string_view::npos;
    return CaselessFinder(hay, needle).find(from);
}

bool containsIgnoreCase(std::string_view hay, std::string_view needle) {
    return findIgnoreCase(hay, needle) != std::string_view::npos;
}

std::size_t replaceAllIgnoreCase(std::string& text, std::string_view search, std::string_view replacement) {
    if (search.empty()) return 0;
    CaselessFinder finder(text, search);
    std::size_t at = finder.find(0);
    if (at == std::string::npos) return 0;
    std::string out;
    out.reserve(text.size());
    std::size_t from = 0, count = 0;
    for (; at != std::string::npos; at = finder.find(from)) {
        out.append(text, from, at - from);
        out.append(replacement);
        from = at + search.size();
        ++count;
    }
    out.append(text, from, std::string::npos);
    text.swap(out);
    return count;
}

std::string properCase(std::string_view text) {
    std::string out(text);
    bool start = true;
    for (char& c : out) {
        auto u = static_cast<unsigned char>(c);
        c = char(start ? upperCase(u) : foldCase(u));
        start = c == ' ';
    }
    return out;
}

bool wildcardMatch(std::string_view text, std::string_view pattern) {
    // Greedy matching with one backtrack point: linear enough for script lines.
    std::size_t t = 0, p = 0, star = std::string_view::npos, resume = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            resume = t;
        } else if (p < pattern.size() && foldCase(static_cast<unsigned char>(pattern[p])) ==
                                             foldCase(static_cast<unsigned char>(text[t]))) {
            ++p, ++t;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            t = ++resume;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == '*')
        ++p;
    return p == pattern.size();
}

std::string foldedKey(std::string_view text) {
    std::string key(text);
    for (char& c : key)
        c = char(foldCase(static_cast<unsigned char>(c)));
    return key;
}

std::string readableExcerpt(std::string_view text, std::size_t limit) {
    if (text.size() <= limit) return std::string(text);
    return std::string(text.substr(0, limit)) + "... (" + groupedNumber(std::int64_t(text.size())) +
           " characters)";
}

} // namespace quillon
