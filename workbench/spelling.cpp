#include "workbench/spelling.h"

#include "app/proper_names.h"

#include "app/encoding.h"
#include "app/parallel.h"
#include "app/text.h"
#include "cleanup/word_tables.h"

#include <array>
#include <cstdint>
#include <mutex>
#include <optional>
#include <unordered_map>

namespace quillon {

namespace {

enum ByteKind : std::uint8_t { kOther, kLetter, kDigit, kApostrophe }; // digits and underscores alike
using ByteKinds = std::array<ByteKind, 256>;

// What each byte is to a word, in the active code page; made again when the page changes.
const ByteKinds& byteKinds() {
    thread_local ByteKinds kinds;
    thread_local std::optional<CodePage> madeFor;
    if (madeFor != activeCodePage()) {
        for (int c = 0; c < 256; ++c) {
            auto b = static_cast<unsigned char>(c);
            bool letter = foldCase(b) != upperCase(b) || b == 0xDF; // letters with a case, and the sharp s
            kinds[b] = letter                               ? kLetter
                       : (b >= '0' && b <= '9') || b == '_' ? kDigit
                       : b == '\'' || b == 0x92 ? kApostrophe // straight, and the right single quote
                                                : kOther;
        }
        madeFor = activeCodePage();
    }
    return kinds;
}

std::string_view withoutSuffix(std::string_view word, std::string_view suffix) {
    if (word.size() <= suffix.size() || !equalsIgnoreCase(word.substr(word.size() - suffix.size()), suffix))
        return {};
    return word.substr(0, word.size() - suffix.size());
}

} // namespace

void wordsToCheck(std::string_view text, std::vector<WordAt>& words) {
    const ByteKinds& kinds = byteKinds();
    auto kindOf = [&](std::size_t i) { return kinds[static_cast<unsigned char>(text[i])]; };
    words.clear();
    for (std::size_t i = 0; i < text.size();) {
        if (kindOf(i) == kOther || kindOf(i) == kApostrophe) {
            ++i;
            continue;
        }
        std::size_t start = i;
        bool skip = start > 0 && text[start - 1] == '%'; // a placeholder
        while (i < text.size()) {
            ByteKind kind = kindOf(i);
            if (kind == kLetter || kind == kDigit) {
                skip = skip || kind == kDigit;
                ++i;
            } else if (kind == kApostrophe && i + 1 < text.size() && kindOf(i + 1) == kLetter &&
                       kindOf(i - 1) == kLetter) {
                ++i;
            } else {
                break;
            }
        }
        if (!skip) words.push_back({text.substr(start, i - start), start});
    }
}

std::vector<WordAt> wordsToCheck(std::string_view text) {
    std::vector<WordAt> words;
    wordsToCheck(text, words);
    return words;
}

void acceptNames(SpellChecker& checker, const RecordStore& store) {
    forEachProperName(store, [&](std::string_view name) { acceptName(checker, name); });
}

void acceptName(SpellChecker& checker, std::string_view name) {
    for (const WordAt& w : wordsToCheck(name))
        checker.accept(w.word);
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

namespace {

// What a finding says of a word, but for where it stands: made once per word, used for each place.
struct Verdict {
    std::string before, after; // the detail around the word's position
    std::vector<std::string> suggestions;
};

Verdict verdictOn(SpellChecker& checker, std::string_view word) {
    Verdict v;
    v.suggestions = checker.suggestions(word);
    v.before = "\"" + std::string(word) + "\" at character ";
    v.after = " is not in the dictionary";
    if (!v.suggestions.empty()) {
        v.after += "; did you mean ";
        for (std::size_t i = 0; i < v.suggestions.size(); ++i)
            v.after += (i ? ", \"" : "\"") + v.suggestions[i] + "\"";
        v.after += "?";
    }
    return v;
}

Finding spellingFinding(Finding f, std::string_view word, std::size_t at, const Verdict& v) {
    f.kind = "spelling";
    f.word = std::string(word);
    f.suggestions = v.suggestions;
    std::string position = std::to_string(at + 1);
    f.detail.reserve(v.before.size() + position.size() + v.after.size());
    f.detail.append(v.before).append(position).append(v.after);
    return f;
}

struct Misspelt {
    std::size_t info;
    WordAt word;
};

// The words of the responses that are not spelled right, in store order. The responses are read
// on all cores; each part remembers its own verdicts, so that the checker (which is not safe to
// share) is asked once per part and word.
std::vector<Misspelt> misspeltWords(const std::vector<InfoRecord>& infos, SpellChecker& checker) {
    constexpr std::size_t kWorthAThread = 2000;
    std::vector<std::vector<Misspelt>> parts(partsFor(infos.size(), kWorthAThread));
    std::mutex checkerGuard;
    forEachPart(infos.size(), kWorthAThread, [&](std::size_t from, std::size_t to, std::size_t part) {
        std::unordered_map<std::string_view, bool> right(4096);
        std::vector<WordAt> words;
        for (std::size_t i = from; i < to; ++i) {
            wordsToCheck(infos[i].NAME, words);
            for (const WordAt& w : words) {
                auto known = right.find(w.word);
                if (known == right.end()) {
                    std::lock_guard<std::mutex> lock(checkerGuard);
                    known = right.emplace(w.word, spelledRight(checker, w.word)).first;
                }
                if (!known->second) parts[part].push_back({i, w});
            }
        }
    });
    std::vector<Misspelt> all;
    for (std::vector<Misspelt>& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

} // namespace

void checkSpelling(const RecordStore& store, SpellChecker& checker, std::vector<Finding>& out,
                   bool namesKnown) {
    std::vector<std::pair<const DialRecord*, WordAt>> inTopics;
    for (const DialRecord& d : store.DIAL) {
        if (d.DATA != 0) continue; // only a topic's name is shown to the player
        for (const WordAt& w : wordsToCheck(d.NAME))
            if (!spelledRight(checker, w.word)) inTopics.emplace_back(&d, w);
    }
    std::vector<Misspelt> inResponses = misspeltWords(store.INFO, checker);
    // Each distinct word's suggestions and words of the finding, made once.
    std::unordered_map<std::string_view, Verdict> verdicts;
    std::vector<std::string_view> distinct;
    auto learn = [&](std::string_view word) {
        if (verdicts.try_emplace(word).second) distinct.push_back(word);
    };
    for (const auto& [dial, w] : inTopics)
        learn(w.word);
    for (const Misspelt& m : inResponses)
        learn(m.word.word);
    checker.suggestAll(distinct);
    for (std::string_view word : distinct)
        verdicts[word] = verdictOn(checker, word);
    // With a master missing, a capitalised word may well be one of its names (a person, a place, a
    // god): it is judged only as a near miss of a name known that no dictionary has (Almvisi).
    auto judged = [&](std::string_view word) {
        auto first = static_cast<unsigned char>(word.front());
        if (namesKnown || foldCase(first) == first) return true;
        const std::vector<std::string>& offered = verdicts[word].suggestions;
        return std::any_of(offered.begin(), offered.end(), [&](const std::string& s) {
            return checker.isAccepted(s) && !checker.inDictionary(s);
        });
    };
    std::erase_if(inTopics, [&](const auto& found) { return !judged(found.second.word); });
    std::erase_if(inResponses, [&](const Misspelt& m) { return !judged(m.word.word); });

    for (const auto& [dial, w] : inTopics) {
        Finding f;
        f.record = "DIAL";
        f.id = dial->NAME;
        out.push_back(spellingFinding(std::move(f), w.word, w.at, verdicts[w.word]));
    }
    std::size_t first = out.size();
    out.resize(first + inResponses.size());
    forEachIndex(inResponses.size(), [&](std::size_t k) {
        const Misspelt& m = inResponses[k];
        out[first + k] = spellingFinding(aboutResponse(store.INFO, m.info, "spelling"), m.word.word,
                                         m.word.at, verdicts.find(m.word.word)->second);
    });
}

} // namespace quillon
