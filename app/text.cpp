#include "app/text.h"

namespace quillon {

namespace {

struct FoldTable {
    unsigned char lower[256];
    unsigned char upper[256];
    FoldTable() {
        for (int c = 0; c < 256; ++c) lower[c] = upper[c] = static_cast<unsigned char>(c);
        auto pair = [&](int up, int low) {
            lower[up] = static_cast<unsigned char>(low);
            upper[low] = static_cast<unsigned char>(up);
        };
        for (int c = 'A'; c <= 'Z'; ++c) pair(c, c + 32);
        pair(0x8A, 0x9A), pair(0x8C, 0x9C), pair(0x8E, 0x9E), pair(0x9F, 0xFF);
        for (int c = 0xC0; c <= 0xDE; ++c)
            if (c != 0xD7) pair(c, c + 32);
    }
};
const FoldTable kFold;

unsigned char upperCase(unsigned char c) { return kFold.upper[c]; }

} // namespace

unsigned char foldCase(unsigned char c) { return kFold.lower[c]; }

bool equalsIgnoreCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (foldCase(static_cast<unsigned char>(a[i])) != foldCase(static_cast<unsigned char>(b[i]))) return false;
    return true;
}

std::size_t findIgnoreCase(std::string_view hay, std::string_view needle, std::size_t from) {
    if (needle.empty()) return from <= hay.size() ? from : std::string_view::npos;
    if (needle.size() > hay.size()) return std::string_view::npos;
    unsigned char first = foldCase(static_cast<unsigned char>(needle[0]));
    for (std::size_t i = from; i + needle.size() <= hay.size(); ++i) {
        if (foldCase(static_cast<unsigned char>(hay[i])) != first) continue;
        if (equalsIgnoreCase(hay.substr(i + 1, needle.size() - 1), needle.substr(1))) return i;
    }
    return std::string_view::npos;
}

bool containsIgnoreCase(std::string_view hay, std::string_view needle) {
    return findIgnoreCase(hay, needle) != std::string_view::npos;
}

std::size_t replaceAllIgnoreCase(std::string& text, std::string_view search, std::string_view replacement) {
    if (search.empty()) return 0;
    std::size_t at = findIgnoreCase(text, search);
    if (at == std::string::npos) return 0;
    std::string out;
    out.reserve(text.size());
    std::size_t from = 0, count = 0;
    for (; at != std::string::npos; at = findIgnoreCase(text, search, from)) {
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
        } else if (p < pattern.size() &&
                   foldCase(static_cast<unsigned char>(pattern[p])) == foldCase(static_cast<unsigned char>(text[t]))) {
            ++p, ++t;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            t = ++resume;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == '*') ++p;
    return p == pattern.size();
}

std::string foldedKey(std::string_view text) {
    std::string key(text);
    for (char& c : key) c = char(foldCase(static_cast<unsigned char>(c)));
    return key;
}

} // namespace quillon
