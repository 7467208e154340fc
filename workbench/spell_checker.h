#pragma once
// Hunspell over the file's texts: words come in the session's code page and go to the dictionary
// in its own encoding. Each distinct word is looked up once; words the user or the load order
// makes known are never looked up at all.
#include "workbench/near_words.h"
#include "workbench/text_recoder.h"

#include "app/encoding.h"
#include <exception>

#include <filesystem>
#include <future>
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
    // with error set when it cannot be found. It loads on another thread meanwhile (while the file
    // to check is read): the first word looked up waits for it.
    static std::unique_ptr<SpellChecker> open(const std::string& dictionary, std::string& error);
    // The names of the dictionaries installed where open looks, sorted, each once.
    static std::vector<std::string> installed();
    // The installed dictionary for texts of the code page: en_US for Western, ru_RU for
    // Cyrillic, a Central European language's for 1250; en_US when that one is missing.
    static std::string forCodePage(CodePage page);
    ~SpellChecker();

    // A word (the code page's bytes) taken as correct from now on, in any letter case.
    void accept(std::string_view word);
    // True when the dictionary or the accepted words know the word.
    bool known(std::string_view word);
    // True when the word was accepted (a name of the load order, a word of the user's list).
    bool isAccepted(std::string_view word) const;
    // True when the dictionary itself (or its other English, see Loaded) knows the word.
    bool inDictionary(std::string_view word);
    // Up to five corrections, in the code page's bytes and the word's letter case, fewest edits
    // first: words of the dictionary and their forms, the accepted names, and two words run
    // together.
    const std::vector<std::string>& suggestions(std::string_view word);
    // The suggestions of many words at once, the search shared among the machine's cores.
    void suggestAll(const std::vector<std::string_view>& words);

private:
    // The dictionary as loaded: Hunspell, and the index of its own words for corrections
    // (Hunspell's own suggestions compare a word with every word of the dictionary, some
    // milliseconds each: too slow for the hundreds of unknown words of a large master).
    struct Loaded {
        std::unique_ptr<Hunspell> hunspell;
        // The other English (en_GB beside en_US, and the reverse): a word it knows is a variant,
        // no misspelling; suggestions come from the chosen one alone.
        std::unique_ptr<Hunspell> variants;
        std::unique_ptr<NearWords> words;
        Loaded();
        Loaded(Loaded&&) noexcept;
        Loaded& operator=(Loaded&&) noexcept;
        ~Loaded();
    };

    SpellChecker(const std::filesystem::path& dic, const std::string& encoding);
    Loaded& loaded();
    // The word in the dictionary's encoding; empty when the encoding cannot hold it.
    std::string toDictionary(std::string_view word) const;
    std::string fromDictionary(const std::string& word) const;
    // The accepted names, indexed again when some were added since.
    const NearWords& names();
    // The corrections of a word, from the positions of the dictionary's and the names' words
    // nearest to it.
    std::vector<std::string> corrections(std::string_view word, const std::vector<std::size_t>& inDictionary,
                                         const std::vector<std::size_t>& inNames);

    // Between the code page's UTF-8 and the dictionary's encoding; null when that is UTF-8.
    std::unique_ptr<TextRecoder> toDictionary_, fromDictionary_;
    std::future<Loaded> loading_;
    Loaded loaded_;
    std::exception_ptr loadFailure_;           // what ended the loading, said again at every use
    std::unordered_set<std::string> accepted_; // folded
    std::vector<std::string> names_;           // the accepted words as first given
    std::unique_ptr<NearWords> nameIndex_;
    std::size_t indexedNames_ = 0; // how many of names_ nameIndex_ holds
    std::unordered_map<std::string, bool> looked_;
    std::unordered_map<std::string, std::vector<std::string>> suggested_;
};

} // namespace quillon
