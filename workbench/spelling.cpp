#include "workbench/spelling.h"

#include "app/text.h"
#include "cleanup/word_tables.h"

namespace quillon {

namespace {

bool isLetter(unsigned char c) {
    return foldCase(c) != upperCase(c) || c == 0xDF; // letters with a case, and the sharp s
}
bool isWordByte(unsigned char c) {
    return isLetter(c) || (c >= '0' && c <= '9') || c == '_';
}
bool isApostrophe(unsigned char c) {
    return c == '\'' || c == 0x92; // straight, and the right single quote
}

std::string_view withoutSuffix(std::string_view word, std::string_view suffix) {
    if (word.size() <= suffix.size() || !equalsIgnoreCase(word.substr(word.size() - suffix.size()), suffix))
        return {};
    return word.substr(0, word.size() - suffix.size());
}

} // namespace

std::vector<WordAt> wordsToCheck(std::string_view text) {
    std::vector<WordAt> words;
    for (std::size_t i = 0; i < text.size();) {
        if (!isWordByte(static_cast<unsigned char>(text[i]))) {
            ++i;
            continue;
        }
        std::size_t start = i;
        bool skip = start > 0 && text[start - 1] == '%'; // a placeholder
        while (i < text.size()) {
            auto c = static_cast<unsigned char>(text[i]);
            if (isWordByte(c)) {
                skip = skip || !isLetter(c);
                ++i;
            } else if (isApostrophe(c) && i + 1 < text.size() &&
                       isLetter(static_cast<unsigned char>(text[i + 1])) &&
                       isLetter(static_cast<unsigned char>(text[i - 1]))) {
                ++i;
            } else {
                break;
            }
        }
        if (!skip) words.push_back({text.substr(start, i - start), start});
    }
    return words;
}

void acceptNames(SpellChecker& checker, const RecordStore& store) {
    auto accept = [&](std::string_view name) {
        for (const WordAt& w : wordsToCheck(name))
            checker.accept(w.word);
    };
    store.forEachArray([&](const auto& array) {
        for (const auto& r : array) {
            if constexpr (requires { std::string_view(r.FNAM); }) accept(r.FNAM);
        }
    });
    // Speakers' IDs are often their names (Bethesda's own are): with a master missing, they are all
    // there is of its names.
    for (const NpcRecord& n : store.NPC_)
        accept(n.NAME);
    for (const CreaRecord& c : store.CREA)
        accept(c.NAME);
    for (const InfoRecord& r : store.INFO)
        accept(r.ONAM);
    for (const CellRecord& c : store.CELL)
        accept(c.NAME);
    for (const DialRecord& d : store.DIAL)
        accept(d.NAME);
    for (const FactRecord& f : store.FACT)
        for (const auto& rank : f.Ranks)
            accept(fixedText(rank.RNAM));
}

void acceptLoreNames(SpellChecker& checker) {
    for (const WordRow& row : properNames())
        for (const WordAt& w : wordsToCheck(row.replacement))
            checker.accept(w.word);
}

bool spelledRight(SpellChecker& checker, std::string_view word) {
    if (checker.known(word)) return true;
    for (std::string_view suffix : {"'s", "\x92s", "'", "\x92", "s"}) {
        std::string_view stem = withoutSuffix(word, suffix);
        if (!stem.empty() && checker.isAccepted(stem)) return true;
    }
    return false;
}

void checkSpelling(const RecordStore& store, SpellChecker& checker, std::vector<Finding>& out) {
    auto report = [&](Finding f, const WordAt& w) {
        f.kind = "spelling";
        f.word = std::string(w.word);
        f.suggestions = checker.suggestions(w.word);
        f.detail =
            "\"" + f.word + "\" at character " + std::to_string(w.at + 1) + " is not in the dictionary";
        if (!f.suggestions.empty()) {
            f.detail += "; did you mean ";
            for (std::size_t i = 0; i < f.suggestions.size(); ++i)
                f.detail += (i ? ", \"" : "\"") + f.suggestions[i] + "\"";
            f.detail += "?";
        }
        out.push_back(std::move(f));
    };
    for (const DialRecord& d : store.DIAL) {
        if (d.DATA != 0) continue; // only a topic's name is shown to the player
        for (const WordAt& w : wordsToCheck(d.NAME))
            if (!spelledRight(checker, w.word)) {
                Finding f;
                f.record = "DIAL";
                f.id = d.NAME;
                report(std::move(f), w);
            }
    }
    for (std::size_t i = 0; i < store.INFO.size(); ++i)
        for (const WordAt& w : wordsToCheck(store.INFO[i].NAME))
            if (!spelledRight(checker, w.word)) report(aboutResponse(store.INFO, i, "spelling"), w);
}

} // namespace quillon
