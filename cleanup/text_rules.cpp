#include "cleanup/text_rules.h"

#include "app/text.h"
#include "cleanup/row_matcher.h"

#include <algorithm>
#include <bitset>
#include <vector>

namespace quillon {

namespace {

const char* const kQuoteMarker = "XXThisIsAQuoteXX";

// The response being cleaned and the bytes it may hold (letters folded): a step looking for a
// byte not among them cannot match and is passed over. Inserted texts add their bytes, so the set
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
        if (search.empty()) return false;
        for (char c : search)
            if (!present_.test(foldCase(static_cast<unsigned char>(c)))) return false;
        return true;
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

} // namespace

// The occurrences of every row are found in one pass. Most rows only set the letter case of their
// text, which moves nothing and makes or breaks no match (matching ignores case): their
// occurrences stay true and are rewritten where they stand, the leftmost first and none
// overlapping the one before, as a search from left to right takes them. A row that changes more
// is replaced through the text, and the occurrences of the rows after it are found again.
void applyWordRows(std::string& text, std::span<const WordRow> rows, bool temple) {
    const RowMatcher& matcher = matcherFor(rows);
    thread_local std::vector<RowMatcher::Occurrence> found;
    auto findAll = [&] {
        found.clear();
        matcher.find(text, found);
        std::sort(found.begin(), found.end());
    };
    findAll();
    for (std::size_t i = 0; i < found.size();) {
        const WordRow& row = rows[found[i].row];
        std::size_t rowEnd = i;
        while (rowEnd < found.size() && found[rowEnd].row == found[i].row)
            ++rowEnd;
        std::string_view search = row.search, replacement = row.replacement;
        if (row.templeOnly && !temple) {
            i = rowEnd;
        } else if (search.size() == replacement.size() && equalsIgnoreCase(search, replacement)) {
            for (std::size_t free = 0; i < rowEnd; ++i)
                if (found[i].start >= free) {
                    text.replace(found[i].start, replacement.size(), replacement);
                    free = found[i].start + search.size();
                }
        } else {
            std::uint32_t done = found[i].row;
            replaceAllIgnoreCase(text, search, replacement);
            findAll();
            i = std::size_t(std::upper_bound(found.begin(), found.end(), RowMatcher::Occurrence{done, ~0u}) -
                            found.begin());
        }
    }
}

void cleanBeforeQuotes(std::string& text, const CleanupSettings& s) {
    Text t(text);
    if (s.isLineBreaks) t.all("\r\n", " ");
    normaliseCharacters(t);
    if (s.isSquare) squareBrackets(t);
    ampersandAndDashCharacters(t);
    dashes(t, s);
    punctuationSpacing(t);
}

void spaceQuotes(std::string& text, const CleanupSettings& s, bool& quoteParity) {
    if (!s.isSpaceQuotes) return;
    Text t(text);
    quoteSpacing(t, quoteParity);
}

void cleanAfterQuotes(std::string& text, const CleanupSettings& s) {
    Text t(text);
    spacingCleanUp(t);
    if (s.isAmerican) applyWordRows(text, americanSpelling(), s.isTemple);
    applyWordRows(text, properNames(), s.isTemple);
    if (s.isSlang) applyWordRows(text, slang(), s.isTemple);
    if (s.isSentences) capitaliseSentences(text, s.isEllipsis);
}

std::string cleanResponse(std::string text, const CleanupSettings& s, bool& quoteParity) {
    cleanBeforeQuotes(text, s);
    spaceQuotes(text, s, quoteParity);
    cleanAfterQuotes(text, s);
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
