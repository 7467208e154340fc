#include "dialogue/result_scripts.h"

#include "app/session.h"
#include "app/text.h"

#include <cctype>

namespace quillon {

bool isChoiceCondition(const InfoCondition& c) {
    return c.Type == '1' && c.Function[0] == '5' && c.Function[1] == '0' && c.Comparison != '1';
}

std::vector<std::string> writtenLines(const std::string& script) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    for (std::size_t at; (at = script.find("\r\n", start)) != std::string::npos; start = at + 2)
        lines.push_back(script.substr(start, at - start));
    lines.push_back(script.substr(start));
    return lines;
}

std::vector<std::string> scriptLines(const std::string& script) {
    std::string text;
    text.reserve(script.size());
    for (std::size_t i = 0; i < script.size(); ++i) {
        if (script[i] == ' ' && i + 1 < script.size() && script[i + 1] == ' ') {
            text += ' ';
            ++i;
        } else if (script[i] != ',') {
            text += script[i];
        }
    }
    std::vector<std::string> lines = writtenLines(text);
    for (std::string& line : lines)
        if (std::size_t semicolon = line.find(';'); semicolon != std::string::npos)
            line = trimBlanks(line.substr(0, semicolon));
    return lines;
}

bool offersChoice(const std::string& line, std::int32_t choice) {
    std::string number = std::to_string(choice);
    return wildcardMatch(line, "*Choice \"*\" " + number) ||
           wildcardMatch(line, "*Choice \"*\" " + number + " *");
}

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

// Where the keyword starts as a word of the line, ignoring case; npos when absent.
std::size_t keyword(const std::string& line, std::string_view word) {
    for (std::size_t at = findIgnoreCase(line, word); at != std::string::npos;
         at = findIgnoreCase(line, word, at + 1)) {
        bool startsWord = at == 0 || !std::isalnum(static_cast<unsigned char>(line[at - 1]));
        std::size_t end = at + word.size();
        if (startsWord && (end == line.size() || isBlank(line[end]) || line[end] == '"')) return end;
    }
    return std::string::npos;
}

} // namespace

std::vector<std::int32_t> choicesOn(const std::string& line) {
    std::vector<std::int32_t> choices;
    std::size_t p = keyword(line, "Choice");
    if (p == std::string::npos) return choices;
    for (;;) {
        while (p < line.size() && isBlank(line[p]))
            ++p;
        if (p >= line.size() || line[p] != '"') break;
        std::size_t close = line.find('"', p + 1);
        if (close == std::string::npos) break;
        p = close + 1;
        while (p < line.size() && isBlank(line[p]))
            ++p;
        std::size_t digits = p;
        while (p < line.size() && std::isdigit(static_cast<unsigned char>(line[p])))
            ++p;
        if (p == digits || p - digits > 9) break;
        choices.push_back(std::stoi(line.substr(digits, p - digits)));
    }
    return choices;
}

std::vector<std::string> topicsAddedOn(const std::string& line) {
    std::vector<std::string> topics;
    std::size_t p = keyword(line, "AddTopic");
    if (p == std::string::npos) return topics;
    while (p < line.size() && isBlank(line[p]))
        ++p;
    if (p < line.size() && line[p] == '"') {
        std::size_t close = line.find('"', p + 1);
        if (close != std::string::npos) topics.push_back(line.substr(p + 1, close - p - 1));
    } else {
        std::size_t end = p;
        while (end < line.size() && !isBlank(line[end]))
            ++end;
        if (end > p) topics.push_back(line.substr(p, end - p));
    }
    return topics;
}

} // namespace quillon
