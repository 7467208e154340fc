#include "workbench/spell_checker.h"

#include "app/encoding.h"
#include "app/text.h"
#include "workbench/text_recoder.h"

#include <hunspell.hxx>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

namespace quillon {

namespace fs = std::filesystem;

namespace {

std::vector<std::string> dictionaryFolders() {
    std::vector<std::string> folders;
    if (const char* set = std::getenv("DICPATH")) {
        std::stringstream list(set);
        for (std::string folder; std::getline(list, folder, ':');)
            if (!folder.empty()) folders.push_back(folder);
    }
    for (const char* folder : {"/usr/share/hunspell", "/usr/share/myspell", "/usr/share/myspell/dicts"})
        folders.push_back(folder);
    return folders;
}

// The .dic a name or a path stands for; empty when there is none with its .aff beside it.
fs::path dictionaryFile(const std::string& dictionary) {
    std::error_code ec;
    auto usable = [&](const fs::path& dic) {
        return fs::is_regular_file(dic, ec) &&
               fs::is_regular_file(fs::path(dic).replace_extension(".aff"), ec);
    };
    if (dictionary.find('/') != std::string::npos || fs::path(dictionary).extension() == ".dic") {
        fs::path dic =
            fs::path(dictionary).extension() == ".dic" ? fs::path(dictionary) : fs::path(dictionary + ".dic");
        return usable(dic) ? dic : fs::path();
    }
    for (const std::string& folder : dictionaryFolders())
        if (fs::path dic = fs::path(folder) / (dictionary + ".dic"); usable(dic)) return dic;
    return {};
}

// The SET line of an .aff file: the encoding of the dictionary's words (ISO8859-1 when absent).
std::string affEncoding(const fs::path& aff) {
    std::ifstream in(aff, std::ios::binary);
    for (std::string line; std::getline(in, line);) {
        if (line.rfind("SET", 0) != 0) continue;
        std::istringstream words(line.substr(3));
        std::string encoding;
        words >> encoding;
        return encoding;
    }
    return "ISO8859-1";
}

bool isUtf8(const std::string& encoding) {
    return equalsIgnoreCase(encoding, "UTF-8") || equalsIgnoreCase(encoding, "UTF8");
}

// The flags of an .aff file that keep a word out of suggestions (NOSUGGEST: profanity and slurs;
// FORBIDDENWORD), and how its flags are written (FLAG: one character, two, or numbers).
struct NeverSuggest {
    std::string format; // "long", "num", or empty for one character (or one UTF-8 character) each
    std::vector<std::string> flags;

    // True when a word's flags (the text after its "/") hold one of them.
    bool marks(std::string_view wordFlags) const {
        for (const std::string& flag : flags) {
            if (format == "num") {
                for (std::size_t at = 0; at <= wordFlags.size();) {
                    std::size_t comma = std::min(wordFlags.find(',', at), wordFlags.size());
                    if (wordFlags.substr(at, comma - at) == flag) return true;
                    at = comma + 1;
                }
            } else if (format == "long") {
                for (std::size_t at = 0; at + 1 < wordFlags.size(); at += 2)
                    if (wordFlags.substr(at, 2) == flag) return true;
            } else if (wordFlags.find(flag) != std::string_view::npos) {
                return true;
            }
        }
        return false;
    }
};

NeverSuggest neverSuggested(const fs::path& aff) {
    NeverSuggest never;
    std::ifstream in(aff, std::ios::binary);
    for (std::string line; std::getline(in, line);) {
        std::istringstream words(line);
        std::string key, value;
        words >> key >> value;
        if (value.empty()) continue;
        if (key == "FLAG") never.format = value;
        if (key == "NOSUGGEST" || key == "FORBIDDENWORD") never.flags.push_back(value);
    }
    return never;
}

// The words of a .dic file (after its count line, before each word's flags or fields), as the
// dictionary's bytes, less those never to be suggested.
std::vector<std::string> dictionaryWords(const fs::path& dic, const NeverSuggest& never) {
    std::ifstream in(dic, std::ios::binary);
    std::vector<std::string> words;
    std::string line;
    std::getline(in, line);
    while (std::getline(in, line)) {
        std::size_t end = 0;
        while (end < line.size() && line[end] != '/' && line[end] != '\t' && line[end] != ' ' &&
               line[end] != '\r')
            end += line[end] == '\\' && end + 1 < line.size() ? 2 : 1; // "\/" is a slash in the word
        if (end == 0) continue;
        if (end < line.size() && line[end] == '/') {
            std::size_t flagsEnd = line.find_first_of(" \t\r", end + 1);
            if (never.marks(std::string_view(line).substr(end + 1, flagsEnd - end - 1))) continue;
        }
        words.emplace_back(line, 0, end);
    }
    return words;
}

// The other English of an English dictionary, beside it with the same character set; empty for
// any other.
fs::path otherEnglish(const fs::path& dic, const std::string& encoding) {
    std::string stem = dic.stem().string(), other = stem == "en_US"   ? "en_GB"
                                                    : stem == "en_GB" ? "en_US"
                                                                      : "";
    if (other.empty()) return {};
    fs::path found = dic.parent_path() / (other + ".dic");
    std::error_code ec;
    bool usable =
        fs::is_regular_file(found, ec) && fs::is_regular_file(fs::path(found).replace_extension(".aff"), ec);
    return usable && affEncoding(fs::path(found).replace_extension(".aff")) == encoding ? found : fs::path();
}

} // namespace

std::vector<std::string> SpellChecker::installed() {
    std::set<std::string> names;
    for (const std::string& folder : dictionaryFolders()) {
        std::error_code ec;
        for (const fs::directory_entry& e : fs::directory_iterator(folder, ec))
            if (e.path().extension() == ".dic" && !dictionaryFile(e.path().string()).empty())
                names.insert(e.path().stem().string());
    }
    return {names.begin(), names.end()};
}

std::string SpellChecker::forCodePage(CodePage page) {
    std::vector<std::string> have = installed();
    auto has = [&](const char* name) { return std::find(have.begin(), have.end(), name) != have.end(); };
    const std::vector<const char*> wanted =
        page == CodePage::Windows1251 ? std::vector<const char*>{"ru_RU", "uk_UA", "bg_BG"}
        : page == CodePage::Windows1250
            ? std::vector<const char*>{"pl_PL", "cs_CZ", "hu_HU", "sk_SK", "sl_SI", "hr_HR", "ro_RO"}
            : std::vector<const char*>{"en_US", "en_GB"};
    for (const char* name : wanted)
        if (has(name)) return name;
    return "en_US";
}

std::unique_ptr<SpellChecker> SpellChecker::open(const std::string& dictionary, std::string& error) {
    fs::path dic = dictionaryFile(dictionary);
    if (dic.empty()) {
        error = "the dictionary \"" + dictionary +
                "\" was not found (give an installed one such as en_US or en_GB, from the hunspell-en-us "
                "and hunspell-en-gb packages, or the path of a .dic with its .aff beside it)";
        return nullptr;
    }
    fs::path aff = fs::path(dic).replace_extension(".aff");
    std::string encoding = affEncoding(aff);
    // Without a conversion every word would be reported as misspelt.
    if (!isUtf8(encoding) && !TextRecoder("UTF-8", encoding).works()) {
        error = "the dictionary \"" + dictionary + "\" gives its words in the character set \"" + encoding +
                "\" (its SET line), which this system cannot convert";
        return nullptr;
    }
    return std::unique_ptr<SpellChecker>(new SpellChecker(dic, encoding));
}

SpellChecker::Loaded::Loaded() = default;
SpellChecker::Loaded::Loaded(Loaded&&) noexcept = default;
SpellChecker::Loaded& SpellChecker::Loaded::operator=(Loaded&&) noexcept = default;
SpellChecker::Loaded::~Loaded() = default;

SpellChecker::SpellChecker(const fs::path& dic, const std::string& encoding) {
    if (!isUtf8(encoding)) {
        toDictionary_ = std::make_unique<TextRecoder>("UTF-8", encoding);
        fromDictionary_ = std::make_unique<TextRecoder>(encoding, "UTF-8");
    }
    // On this thread at the first use instead when no other can be had.
    loading_ = std::async(std::launch::async | std::launch::deferred, [this, dic, encoding] {
        Loaded l;
        fs::path aff = fs::path(dic).replace_extension(".aff");
        l.hunspell = std::make_unique<Hunspell>(aff.c_str(), dic.c_str());
        if (fs::path other = otherEnglish(dic, encoding); !other.empty())
            l.variants =
                std::make_unique<Hunspell>(fs::path(other).replace_extension(".aff").c_str(), other.c_str());
        std::vector<std::string> words;
        for (const std::string& w : dictionaryWords(dic, neverSuggested(aff)))
            if (std::string bytes = fromDictionary(w); !bytes.empty()) words.push_back(std::move(bytes));
        l.words = std::make_unique<NearWords>(std::move(words));
        return l;
    });
}

SpellChecker::~SpellChecker() {
    // A loading under way uses the converters; one left to the first use never started.
    if (loading_.valid() && loading_.wait_for(std::chrono::seconds(0)) != std::future_status::deferred)
        loading_.wait();
}

SpellChecker::Loaded& SpellChecker::loaded() {
    if (loading_.valid()) {
        try {
            loaded_ = loading_.get();
        } catch (...) {
            loadFailure_ = std::current_exception();
        }
    }
    if (loadFailure_) std::rethrow_exception(loadFailure_);
    return loaded_;
}

std::string SpellChecker::toDictionary(std::string_view word) const {
    std::string utf8 = toUtf8(word);
    return toDictionary_ ? (*toDictionary_)(utf8) : utf8;
}

std::string SpellChecker::fromDictionary(const std::string& word) const {
    std::string bytes;
    char32_t missing = 0;
    bool whole = fromUtf8(fromDictionary_ ? (*fromDictionary_)(word) : word, bytes, missing);
    return whole ? bytes : std::string();
}

void SpellChecker::accept(std::string_view word) {
    if (accepted_.insert(foldedKey(word)).second) names_.emplace_back(word);
}

bool SpellChecker::isAccepted(std::string_view word) const {
    return accepted_.count(foldedKey(word)) != 0;
}

bool SpellChecker::known(std::string_view word) {
    return accepted_.count(foldedKey(word)) || inDictionary(word);
}

bool SpellChecker::inDictionary(std::string_view word) {
    auto [at, isNew] = looked_.emplace(std::string(word), false);
    if (isNew) {
        std::string inDictionary = toDictionary(word);
        Loaded& l = loaded();
        at->second = !inDictionary.empty() &&
                     (l.hunspell->spell(inDictionary) || (l.variants && l.variants->spell(inDictionary)));
    }
    return at->second;
}

} // namespace quillon
