#include "cleanup/text_rules.h"

#include "app/text.h"

#include <bitset>
#include <vector>

namespace quillon {

namespace {

const char* const kQuoteMarker = "XXThisIsAQuoteXX";

// The response being cleaned and the bytes it may hold (letters folded): a step whose first byte
// is not among them cannot match and is passed over. Inserted texts add their bytes, so the set
// never misses a byte the text holds.
class Text {
public:
    explicit Text(std::string& text) : text_(text) { note(text); }
    std::string& str() { return text_; }
    // Every occurrence, left to right, without rescanning what was inserted.
    bool all(std::string_view search, std::string_view replacement) {
        if (!mayHold(search) || replaceAllIgnoreCase(text_, search, replacement) == 0) return false;
        note(replacement);
        return true;
    }
    // The first occurrence only.
    bool once(std::string_view search, std::string_view replacement) {
        if (!mayHold(search)) return false;
        std::size_t at = findIgnoreCase(text_, search);
        if (at == std::string::npos) return false;
        text_.replace(at, search.size(), replacement);
        note(replacement);
        return true;
    }
    // Again as long as the search text still occurs.
    void repeat(std::string_view search, std::string_view replacement) {
        while (all(search, replacement)) {
        }
    }
    bool contains(std::string_view search) const {
        return mayHold(search) && containsIgnoreCase(text_, search);
    }
    // Bytes that a change made through str() may have added.
    void noteAdded(std::string_view added) { note(added); }

private:
    bool mayHold(std::string_view search) const {
        return !search.empty() && present_.test(foldCase(static_cast<unsigned char>(search[0])));
    }
    void note(std::string_view added) {
        for (char c : added)
            present_.set(foldCase(static_cast<unsigned char>(c)));
    }
    std::string& text_;
    std::bitset<256> present_;
};

void trimBlanksInPlace(std::string& text) {
    std::size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos) {
        text.clear();
        return;
    }
    text.erase(text.find_last_not_of(' ') + 1);
    text.erase(0, first);
}

void normaliseCharacters(Text& t) {
    t.all("\x85", "...");
    t.all("....", "..."); // one pass: five points become four
    t.all("\x92", "'");
    t.all("`", "'");
    t.all("@", "");
    t.all("#", "");
    t.all("\x94", "\"");
    t.all("\x93", "\"");
    t.all("\t", " ");
}

void squareBrackets(Text& t) {
    t.all("(", "[");
    t.all(")", "]");
    t.all("{", "[");
    t.all("}", "]");
}

void ampersandAndDashCharacters(Text& t) {
    t.all("&", " and ");
    t.all("\x97", "-");
    // Code 6 is searched for, not the en dash, which therefore stays: intended.
    t.all("\x06", "-");
}

// The sense of "Force Single Dashes" runs against its caption on purpose: off collapses dashes.
void dashes(Text& t, const CleanupSettings& s) {
    if (!s.isDashes) {
        t.repeat("--", "-");
        if (s.isDashSpaces) {
            t.all(" -", " - ");
            t.all("- ", " - ");
        }
    } else if (s.isDashSpaces) {
        t.all(" --", " -- ");
        t.all("-- ", " -- ");
    }
}

void punctuationSpacing(Text& t) {
    for (const char* mark : {".", ",", "?", "!", ";", ":"})
        t.all(mark, std::string(mark) + " ");
    for (const char* mark : {",", ".", ";", ":", "!", "?"})
        t.all(std::string(" ") + mark, mark);
    trimBlanksInPlace(t.str());
}

// A blank before every opening and after every closing quote. The parity lives across the
// whole command, so an odd count of quotes makes the next response start with a closing one.
void quoteSpacing(Text& t, bool& parity) {
    if (!t.contains("\"")) return;
    // Without a marker the writer typed, every marker stands between two blanks and the loop
    // below turns them into quotes in text order, alternately " \"" (opening) and "\" " (closing):
    // done so in one pass, since the loop rescans the text once per quote mark.
    if (!t.contains(kQuoteMarker)) {
        std::string out;
        out.reserve(t.str().size() + t.str().size() / 8);
        for (char c : t.str()) {
            if (c != '"') {
                out += c;
                continue;
            }
            out += parity ? "\" " : " \"";
            parity = !parity;
        }
        t.str().swap(out);
        t.noteAdded(" ");
        return;
    }
    t.all("\"", std::string(" ") + kQuoteMarker + " ");
    std::string opening = std::string(kQuoteMarker) + " ", closing = std::string(" ") + kQuoteMarker;
    while (t.contains(kQuoteMarker)) {
        if (!t.once(parity ? closing : opening, "\"")) break; // a marker the writer typed
        parity = !parity;
    }
}

void spacingCleanUp(Text& t) {
    t.repeat("  ", " ");
    for (const char* mark : {".", ",", "?", "!", ":"})
        t.all(std::string("\" ") + mark, std::string("\"") + mark);
}

bool isLowerAscii(char c) {
    return c >= 'a' && c <= 'z';
}

// Raises the first character and every a-z after ". ", "? " and "! ". An ellipsis shields the
// letter after it unless isEllipsis is set. This one pass gives what a pass per letter of the
// alphabet gives, as no raised letter can make or break another match.
void capitaliseSentences(std::string& text, bool isEllipsis) {
    if (text.empty()) return;
    std::vector<bool> shielded(text.size(), false);
    if (!isEllipsis) {
        for (std::size_t at = text.find("..."); at != std::string::npos; at = text.find("...", at + 3))
            shielded[at] = shielded[at + 1] = shielded[at + 2] = true;
    }
    if (isLowerAscii(text[0]) && !shielded[0]) text[0] = char(text[0] - 32);
    for (std::size_t i = 0; i + 2 < text.size(); ++i) {
        char mark = text[i];
        if ((mark == '.' || mark == '?' || mark == '!') && !shielded[i] && text[i + 1] == ' ' &&
            isLowerAscii(text[i + 2]))
            text[i + 2] = char(text[i + 2] - 32);
    }
}

// A row can match only if every run of three neighbouring bytes of its search text (two for the
// shortest rows), letters folded, occurs in the text. A bit set of the text's runs rules out
// nearly every row at once; only rows that pass are searched for.
constexpr std::size_t kFilterBits = 1 << 15;
using RunSet = std::bitset<kFilterBits>;

std::uint16_t runKey(std::string_view s, std::size_t at, std::size_t length) {
    std::size_t h = 0;
    for (std::size_t i = 0; i < length; ++i)
        h = h * 131 + foldCase(static_cast<unsigned char>(s[at + i]));
    return std::uint16_t((h * 2654435761u >> 7) & (kFilterBits - 1));
}

struct PreparedRow {
    std::string_view search, replacement;
    bool templeOnly;
    std::vector<std::uint16_t> keys;
};

// The rows of a table with their keys, worked out once.
const std::vector<PreparedRow>& prepared(std::span<const WordRow> rows) {
    static std::vector<std::pair<const WordRow*, std::vector<PreparedRow>>> cache;
    for (const auto& [first, table] : cache)
        if (first == rows.data()) return table;
    std::vector<PreparedRow> table;
    for (const WordRow& row : rows) {
        PreparedRow p{row.search, row.replacement, row.templeOnly, {}};
        std::size_t length = std::min<std::size_t>(3, p.search.size());
        for (std::size_t i = 0; i + length <= p.search.size() && length >= 2; ++i)
            p.keys.push_back(runKey(p.search, i, length));
        table.push_back(std::move(p));
    }
    cache.emplace_back(rows.data(), std::move(table));
    return cache.back().second;
}

// Adds the runs of two and of three bytes that start in [from, to) of the text.
void addRuns(const std::string& text, std::size_t from, std::size_t to, RunSet& runs) {
    for (std::size_t i = from; i < to && i + 2 <= text.size(); ++i) {
        runs.set(runKey(text, i, 2));
        if (i + 3 <= text.size()) runs.set(runKey(text, i, 3));
    }
}

// Replaces every occurrence as replaceAllIgnoreCase does and adds to runs those the inserted
// texts make, so that runs still holds every run of the text (and perhaps some it lost).
void replaceRow(std::string& text, const PreparedRow& row, RunSet& runs) {
    if (row.search.empty()) return;
    CaselessFinder finder(text, row.search);
    std::size_t at = finder.find(0);
    if (at == std::string::npos) return;
    std::string out;
    out.reserve(text.size() + row.replacement.size());
    std::vector<std::size_t> inserted;
    std::size_t from = 0;
    for (; at != std::string::npos; at = finder.find(from)) {
        out.append(text, from, at - from);
        inserted.push_back(out.size());
        out.append(row.replacement);
        from = at + row.search.size();
    }
    out.append(text, from, std::string::npos);
    text.swap(out);
    for (std::size_t start : inserted)
        addRuns(text, start >= 2 ? start - 2 : 0, start + row.replacement.size() + 1, runs);
}

} // namespace

namespace {

// The rows of one table over a text whose runs are all in present.
void applyRows(std::string& text, std::span<const WordRow> rows, bool temple, RunSet& present) {
    for (const PreparedRow& row : prepared(rows)) {
        if ((row.templeOnly && !temple) || row.search.size() > text.size()) continue;
        bool possible = true;
        for (std::uint16_t key : row.keys)
            if (!present.test(key)) {
                possible = false;
                break;
            }
        if (possible) replaceRow(text, row, present);
    }
}

RunSet& runsOf(const std::string& text) {
    thread_local RunSet runs;
    runs.reset();
    addRuns(text, 0, text.size(), runs);
    return runs;
}

} // namespace

void applyWordRows(std::string& text, std::span<const WordRow> rows, bool temple) {
    applyRows(text, rows, temple, runsOf(text));
}

std::string cleanResponse(std::string text, const CleanupSettings& s, bool& quoteParity) {
    Text t(text);
    if (s.isLineBreaks) t.all("\r\n", " ");
    normaliseCharacters(t);
    if (s.isSquare) squareBrackets(t);
    ampersandAndDashCharacters(t);
    dashes(t, s);
    punctuationSpacing(t);
    if (s.isSpaceQuotes) quoteSpacing(t, quoteParity);
    spacingCleanUp(t);
    RunSet& runs = runsOf(text); // kept up to date through all three tables
    if (s.isAmerican) applyRows(text, americanSpelling(), s.isTemple, runs);
    applyRows(text, properNames(), s.isTemple, runs);
    if (s.isSlang) applyRows(text, slang(), s.isTemple, runs);
    if (s.isSentences) capitaliseSentences(text, s.isEllipsis);
    return text;
}

void onCapitalizeSentencesClicked(bool sentencesChecked, bool& ellipsisChecked, bool& ellipsisEnabled) {
    if (sentencesChecked) {
        ellipsisEnabled = true;
    } else {
        ellipsisChecked = false;
        ellipsisEnabled = false;
    }
}

} // namespace quillon
