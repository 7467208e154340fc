#include "workbench/personal_words.h"

#include "app/encoding.h"
#include "records/source_bytes.h"
#include "writer/safe_file.h"

#include <cstdlib>
#include <filesystem>
#include <sstream>

namespace quillon {

namespace fs = std::filesystem;

std::string personalWordsPath() {
    const char* data = std::getenv("XDG_DATA_HOME");
    const char* home = std::getenv("HOME");
    fs::path folder = data && *data ? fs::path(data) : fs::path(home ? home : ".") / ".local" / "share";
    return (folder / "quillon" / "words.txt").string();
}

void acceptWordList(SpellChecker& checker, std::string_view text) {
    std::istringstream lines{std::string(text)};
    for (std::string word; std::getline(lines, word);) {
        if (!word.empty() && word.back() == '\r') word.pop_back();
        std::string bytes;
        char32_t missing = 0;
        // A word the code page cannot hold cannot stand in the file's texts either.
        if (!word.empty() && fromUtf8(word, bytes, missing)) checker.accept(bytes);
    }
}

std::string acceptPersonalWords(SpellChecker& checker) {
    std::string path = personalWordsPath(), error;
    std::error_code ec;
    if (!fs::exists(path, ec)) return {};
    std::string text = loadFile(path, error);
    if (error.empty()) acceptWordList(checker, text);
    return error;
}

std::string addPersonalWord(std::string_view word) {
    std::string path = personalWordsPath(), error;
    std::error_code ec;
    std::string text;
    if (fs::exists(path, ec)) {
        text = loadFile(path, error);
        if (!error.empty()) return "your word list \"" + path + "\" cannot be read: " + error;
    }
    fs::create_directories(fs::path(path).parent_path(), ec);
    if (!text.empty() && text.back() != '\n') text += '\n';
    text += toUtf8(word) + '\n';
    error = replaceFileSafely(path, text);
    return error.empty() ? std::string() : "your word list \"" + path + "\" could not be written: " + error;
}

} // namespace quillon
