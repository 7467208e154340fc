#include "cleanup/text_rules.h"

#include "app/text.h"

#include <bitset>
#include <vector>

namespace quillon {

namespace {

const char* const kQuoteMarker = "XXThisIsAQuoteXX";

void replaceAll(std::string& text, std::string_view search, std::string_view replacement) {
    replaceAllIgnoreCase(text, search, replacement);
}

// Replaces the first occurrence only; false when there is none.
bool replaceOnce(std::string& text, std::string_view search, std::string_view replacement) {
    std::size_t at = findIgnoreCase(text, search);
    if (at == std::string::npos) return false;
    text.replace(at, search.size(), replacement);
    return true;
}

// Replaces again as long as the search text still occurs.
void replaceRepeatedly(std::string& text, std::string_view search, std::string_view replacement) {
    while (replaceAllIgnoreCase(text, search, replacement) > 0) {
    }
}

void trimBlanksInPlace(std::string& text) {
    std::size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos) {
        text.clear();
        return;
    }
    text.erase(text.find_last_not_of(' ') + 1);
    text.erase(0, first);
}

void normaliseCharacters(std::string& text) {
    replaceAll(text, "\x85", "...");
    replaceAll(text, "....", "..."); // one pass: five points become four
    replaceAll(text, "\x92", "'");
    replaceAll(text, "`", "'");
    replaceAll(text, "@", "");
    replaceAll(text, "#", "");
    replaceAll(text, "\x94", "\"");
    replaceAll(text, "\x93", "\"");
    replaceAll(text, "\t", " ");
}

void squareBrackets(std::string& text) {
    replaceAll(text, "(", "[");
    replaceAll(text, ")", "]");
    replaceAll(text, "{", "[");
    replaceAll(text, "}", "]");
}

void ampersandAndDashCharacters(std::string& text) {
    replaceAll(text, "&", " and ");
    replaceAll(text, "\x97", "-");
    // Code 6 is searched for, not the en dash, which therefore stays: intended.
    replaceAll(text, "\x06", "-");
}

// The sense of "Force Single Dashes" runs against its caption on purpose: off collapses dashes.
void dashes(std::string& text, const CleanupSettings& s) {
    if (!s.isDashes) {
        replaceRepeatedly(text, "--", "-");
        if (s.isDashSpaces) {
            replaceAll(text, " -", " - ");
            replaceAll(text, "- ", " - ");
        }
    } else if (s.isDashSpaces) {
        replaceAll(text, " --", " -- ");
        replaceAll(text, "-- ", " -- ");
    }
}

void punctuationSpacing(std::string& text) {
    for (const char* mark : {".", ",", "?", "!", ";", ":"}) replaceAll(text, mark, std::string(mark) + " ");
    for (const char* mark : {",", ".", ";", ":", "!", "?"}) replaceAll(text, std::string(" ") + mark, mark);
    trimBlanksInPlace(text);
}

// A blank before every opening and after every closing quote. The parity lives across the
// whole command, so an odd count of quotes makes the next response start with a closing one.
void quoteSpacing(std::string& text, bool& parity) {
    replaceAll(text, "\"", std::string(" ") + kQuoteMarker + " ");
    std::string opening = std::string(kQuoteMarker) + " ", closing = std::string(" ") + kQuoteMarker;
    while (containsIgnoreCase(text, kQuoteMarker)) {
        if (!replaceOnce(text, parity ? closing : opening, "\"")) break; // a marker the writer typed
        parity = !parity;
    }
}

void spacingCleanUp(std::string& text) {
    replaceRepeatedly(text, "  ", " ");
    for (const char* mark : {".", ",", "?", "!", ":"}) replaceAll(text, std::string("\" ") + mark, std::string("\"") + mark);
}

bool isLowerAscii(char c) { return c >= 'a' && c <= 'z'; }

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
        if ((mark == '.' || mark == '?' || mark == '!') && !shielded[i] && text[i + 1] == ' ' && isLowerAscii(text[i + 2]))
            text[i + 2] = char(text[i + 2] - 32);
    }
}

// A row can match only if every pair of neighbouring bytes of its search text occurs in the
// text; a small bit set of the text's pairs (letters folded) rules most rows out at once.
class PairFilter {
public:
    explicit PairFilter(const std::string& text) { update(text); }
    void update(const std::string& text) {
        bits_.reset();
        for (std::size_t i = 0; i + 1 < text.size(); ++i) bits_.set(key(text[i], text[i + 1]));
    }
    bool mayContain(std::string_view search) const {
        for (std::size_t i = 0; i + 1 < search.size(); ++i)
            if (!bits_.test(key(search[i], search[i + 1]))) return false;
        return true;
    }

private:
    static std::size_t key(char a, char b) {
        return (std::size_t(foldCase(static_cast<unsigned char>(a))) * 131 +
                foldCase(static_cast<unsigned char>(b))) & 4095;
    }
    std::bitset<4096> bits_;
};

} // namespace

void applyWordRows(std::string& text, std::span<const WordRow> rows, bool temple) {
    PairFilter filter(text);
    for (const WordRow& row : rows) {
        if (row.templeOnly && !temple) continue;
        std::string_view search = row.search;
        if (search.size() > text.size() || !filter.mayContain(search)) continue;
        if (replaceAllIgnoreCase(text, search, row.replacement) > 0) filter.update(text);
    }
}

std::string cleanResponse(std::string text, const CleanupSettings& s, bool& quoteParity) {
    if (s.isLineBreaks) replaceAll(text, "\r\n", " ");
    normaliseCharacters(text);
    if (s.isSquare) squareBrackets(text);
    ampersandAndDashCharacters(text);
    dashes(text, s);
    punctuationSpacing(text);
    if (s.isSpaceQuotes) quoteSpacing(text, quoteParity);
    spacingCleanUp(text);
    if (s.isAmerican) applyWordRows(text, americanSpelling(), s.isTemple);
    applyWordRows(text, properNames(), s.isTemple);
    if (s.isSlang) applyWordRows(text, slang(), s.isTemple);
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
