#include "workbench/spell_checker.h"

#include "app/encoding.h"
#include "app/text.h"

#include <hunspell.hxx>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <iconv.h>

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

// text converted between encodings by the system's iconv; empty when a character has no place in
// the target.
std::string converted(const std::string& text, const std::string& from, const std::string& to) {
    iconv_t cd = ::iconv_open(to.c_str(), from.c_str());
    if (cd == iconv_t(-1)) return {};
    std::string out(text.size() * 4 + 4, '\0');
    char* in = const_cast<char*>(text.data());
    char* at = out.data();
    std::size_t inLeft = text.size(), outLeft = out.size();
    std::size_t done = ::iconv(cd, &in, &inLeft, &at, &outLeft);
    ::iconv_close(cd);
    if (done == std::size_t(-1)) return {};
    out.resize(out.size() - outLeft);
    return out;
}

} // namespace

std::unique_ptr<SpellChecker> SpellChecker::open(const std::string& dictionary, std::string& error) {
    fs::path dic = dictionaryFile(dictionary);
    if (dic.empty()) {
        error = "the dictionary \"" + dictionary +
                "\" was not found (give an installed one such as en_US or en_GB, from the hunspell-en-us "
                "and hunspell-en-gb packages, or the path of a .dic with its .aff beside it)";
        return nullptr;
    }
    fs::path aff = fs::path(dic).replace_extension(".aff");
    auto hunspell = std::make_unique<Hunspell>(aff.c_str(), dic.c_str());
    return std::unique_ptr<SpellChecker>(new SpellChecker(std::move(hunspell), affEncoding(aff)));
}

SpellChecker::SpellChecker(std::unique_ptr<Hunspell> hunspell, std::string encoding)
    : hunspell_(std::move(hunspell)), encoding_(std::move(encoding)) {}

SpellChecker::~SpellChecker() = default;

std::string SpellChecker::toDictionary(std::string_view word) const {
    std::string utf8 = toUtf8(word);
    return isUtf8(encoding_) ? utf8 : converted(utf8, "UTF-8", encoding_);
}

std::string SpellChecker::fromDictionary(const std::string& word) const {
    std::string utf8 = isUtf8(encoding_) ? word : converted(word, encoding_, "UTF-8");
    std::string bytes;
    char32_t missing = 0;
    return fromUtf8(utf8, bytes, missing) ? bytes : std::string();
}

void SpellChecker::accept(std::string_view word) {
    accepted_.insert(foldedKey(word));
}

bool SpellChecker::isAccepted(std::string_view word) const {
    return accepted_.count(foldedKey(word)) != 0;
}

bool SpellChecker::known(std::string_view word) {
    if (accepted_.count(foldedKey(word))) return true;
    auto [at, isNew] = looked_.emplace(std::string(word), false);
    if (isNew) {
        std::string inDictionary = toDictionary(word);
        at->second = !inDictionary.empty() && hunspell_->spell(inDictionary);
    }
    return at->second;
}

const std::vector<std::string>& SpellChecker::suggestions(std::string_view word) {
    auto [at, isNew] = suggested_.emplace(std::string(word), std::vector<std::string>());
    if (isNew) {
        std::string inDictionary = toDictionary(word);
        if (!inDictionary.empty())
            for (const std::string& s : hunspell_->suggest(inDictionary)) {
                std::string bytes = fromDictionary(s);
                if (!bytes.empty() && at->second.size() < 5) at->second.push_back(bytes);
            }
    }
    return at->second;
}

} // namespace quillon
