#pragma once
// Hunspell over the file's texts: words come in the session's code page and go to the dictionary
// in its own encoding. Each distinct word is looked up once; words the user or the load order
// makes known are never looked up at all.
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

class Hunspell;

namespace quillon {

class SpellChecker {
public:
    // The dictionary named (en_US, looked for among the installed ones: $DICPATH, then
    // /usr/share/hunspell and /usr/share/myspell) or the .dic at a path, its .aff beside it; null
    // with error set when it cannot be found or read.
    static std::unique_ptr<SpellChecker> open(const std::string& dictionary, std::string& error);
    ~SpellChecker();

    // A word (the code page's bytes) taken as correct from now on, in any letter case.
    void accept(std::string_view word);
    // True when the dictionary or the accepted words know the word.
    bool known(std::string_view word);
    // True when the word was accepted (a name of the load order, a word of the user's list).
    bool isAccepted(std::string_view word) const;
    // Up to five corrections the dictionary offers, in the code page's bytes.
    const std::vector<std::string>& suggestions(std::string_view word);

private:
    SpellChecker(std::unique_ptr<Hunspell> hunspell, std::string encoding);
    // The word in the dictionary's encoding; empty when the encoding cannot hold it.
    std::string toDictionary(std::string_view word) const;
    std::string fromDictionary(const std::string& word) const;

    std::unique_ptr<Hunspell> hunspell_;
    std::string encoding_;                     // the dictionary's, as its .aff names it
    std::unordered_set<std::string> accepted_; // folded
    std::unordered_map<std::string, bool> looked_;
    std::unordered_map<std::string, std::vector<std::string>> suggested_;
};

} // namespace quillon
