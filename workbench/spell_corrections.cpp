// The corrections a spell checker offers for a word it does not know.
#include "app/parallel.h"
#include "app/text.h"
#include "workbench/spell_checker.h"

#include <hunspell.hxx>

#include <algorithm>

namespace quillon {

namespace {

// How many of the nearest words of the dictionary and of the names are looked at: enough for the
// right one to be among them when the nearest by letter pairs are words of the same ending.
constexpr std::size_t kNearest = 40;
// The most letters a form adds to its stem beyond the edits a correction may make ("-ations").
constexpr std::size_t kLongestEnding = 5;

// The edits (in half edits, as editDistance counts) a correction may be away from the word: at
// most two for a short word, one more for every four letters beyond eight.
int farthestFor(std::string_view word) {
    return 2 * std::max<int>(2, int(word.size() + 2) / 4);
}

bool isUpper(char c) {
    auto b = static_cast<unsigned char>(c);
    return foldCase(b) != b;
}
bool isLower(char c) {
    auto b = static_cast<unsigned char>(c);
    return upperCase(b) != b;
}
bool inCapitals(std::string_view word) {
    return word.size() > 1 && std::none_of(word.begin(), word.end(), isLower);
}

// A correction in the letter case of the word it corrects: capitalised after a capitalised word,
// in capitals after one in capitals.
std::string inCaseOf(std::string_view word, std::string correction) {
    if (word.empty() || correction.empty() || !isUpper(word[0])) return correction;
    for (std::size_t i = 0; i < (inCapitals(word) ? correction.size() : 1); ++i)
        correction[i] = char(upperCase(static_cast<unsigned char>(correction[i])));
    return correction;
}

// A name offered for a word in small letters, or an abbreviation in capitals for a word that is
// not one: put after the corrections that keep the word's letter case.
bool changesCase(std::string_view word, std::string_view correction) {
    return (inCapitals(correction) && !inCapitals(word)) || (!isUpper(word[0]) && isUpper(correction[0]));
}

// A possessive offered for a word without an apostrophe: never the correction meant.
bool addsApostrophe(std::string_view word, std::string_view form) {
    return form.find('\'') != std::string_view::npos && word.find('\'') == std::string_view::npos;
}

} // namespace

const NearWords& SpellChecker::names() {
    if (!nameIndex_ || indexedNames_ != names_.size()) {
        nameIndex_ = std::make_unique<NearWords>(names_);
        indexedNames_ = names_.size();
    }
    return *nameIndex_;
}

std::vector<std::string> SpellChecker::corrections(std::string_view word,
                                                   const std::vector<std::size_t>& inDictionary,
                                                   const std::vector<std::size_t>& inNames) {
    struct Candidate {
        std::string text;
        int distance;
        // At the same distance: a word in the letter case of the one corrected first, a nearer
        // word before a farther, a word before two words.
        int rank;
        bool fromList; // a word of the .dic, which may be one only with an affix: asked again
    };
    std::vector<Candidate> candidates;
    const int farthest = farthestFor(word);
    auto consider = [&](std::string text, int rank, bool fromList) {
        // Every letter more or less costs at least half an edit.
        std::size_t gap = text.size() > word.size() ? text.size() - word.size() : word.size() - text.size();
        if (int(gap) > farthest) return;
        int distance = editDistance(word, text);
        if (changesCase(word, text)) rank += 1000;
        // The same letters in another case are a correction too ("OK" for "Ok").
        if (distance <= farthest && text != word)
            candidates.push_back({std::move(text), distance, rank, fromList});
    };

    Loaded& dictionary = loaded();
    for (std::size_t k = 0; k < inDictionary.size(); ++k) {
        const std::string& root = (*dictionary.words)[inDictionary[k]];
        consider(root, int(k), true);
        std::string rootInDictionary = toDictionary(root);
        if (rootInDictionary.empty()) continue;
        for (const std::string& form : dictionary.hunspell->suffix_suggest(rootInDictionary))
            if (std::string bytes = fromDictionary(form); !bytes.empty() && !addsApostrophe(word, bytes))
                consider(std::move(bytes), int(k), false);
    }
    const NearWords& nameIndex = names();
    for (std::size_t k = 0; k < inNames.size(); ++k)
        consider(nameIndex[inNames[k]], int(k), false);
    // Two words run together ("afterall").
    for (std::size_t split = 2; split + 2 <= word.size(); ++split)
        if (known(word.substr(0, split)) && known(word.substr(split)))
            candidates.push_back({std::string(word.substr(0, split)) + " " + std::string(word.substr(split)),
                                  2, int(kNearest + split), false});

    std::stable_sort(candidates.begin(), candidates.end(), [](const Candidate& a, const Candidate& b) {
        return a.distance != b.distance ? a.distance < b.distance : a.rank < b.rank;
    });
    std::vector<std::string> out;
    std::unordered_set<std::string> given;
    for (Candidate& c : candidates) {
        if (out.size() == 5) break;
        std::string key = foldedKey(c.text);
        if (given.count(key) || (c.fromList && !known(c.text))) continue;
        given.insert(std::move(key));
        out.push_back(inCaseOf(word, std::move(c.text)));
    }
    return out;
}

const std::vector<std::string>& SpellChecker::suggestions(std::string_view word) {
    suggestAll({word});
    return suggested_.find(std::string(word))->second;
}

void SpellChecker::suggestAll(const std::vector<std::string_view>& words) {
    std::vector<std::string_view> asked;
    for (std::string_view word : words)
        if (!suggested_.count(std::string(word))) asked.push_back(word);
    const NearWords& dictionary = *loaded().words;
    const NearWords& nameIndex = names();
    // The index search is most of the work and reads only the indexes: it runs on all cores.
    std::vector<std::vector<std::size_t>> inDictionary(asked.size()), inNames(asked.size());
    forEachPart(asked.size(), 32, [&](std::size_t from, std::size_t to, std::size_t) {
        for (std::size_t i = from; i < to; ++i) {
            // A name must be within the edits allowed; a word of the dictionary may be the stem
            // of a longer form.
            std::size_t length = asked[i].size(), gap = std::size_t(farthestFor(asked[i]));
            std::size_t shortest = length > gap + kLongestEnding ? length - gap - kLongestEnding : 1;
            inDictionary[i] = dictionary.nearest(asked[i], kNearest, shortest, length + gap);
            inNames[i] = nameIndex.nearest(asked[i], kNearest, length > gap ? length - gap : 1, length + gap);
        }
    });
    for (std::size_t i = 0; i < asked.size(); ++i)
        suggested_.emplace(std::string(asked[i]), corrections(asked[i], inDictionary[i], inNames[i]));
}

} // namespace quillon
