#include "dialogue/result_scripts.h"

#include "app/session.h"
#include "app/text.h"
#include "script/script_reader.h"

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

std::vector<std::int32_t> choicesOn(const std::string& line) {
    std::vector<std::int32_t> choices;
    for (const ScriptStatement& s : readScript(line)) {
        if (s.head.kind != ScriptToken::Name || !sameName(s.head.text, "choice")) continue;
        // Each text with its number, up to the first argument that breaks the pairs.
        for (std::size_t i = 0; i + 1 < s.arguments.size(); i += 2) {
            const ScriptToken &text = s.arguments[i], &number = s.arguments[i + 1];
            if (text.kind != ScriptToken::Text || number.kind != ScriptToken::Number ||
                number.text.size() > 9 || number.text.find('.') != std::string_view::npos)
                break;
            choices.push_back(std::stoi(std::string(number.text)));
        }
    }
    return choices;
}

std::vector<std::string> topicsAddedOn(const std::string& line) {
    std::vector<std::string> topics;
    for (const ScriptStatement& s : readScript(line))
        if (s.head.kind == ScriptToken::Name && sameName(s.head.text, "addtopic") && !s.arguments.empty() &&
            s.arguments[0].kind != ScriptToken::Symbol)
            topics.emplace_back(s.arguments[0].text);
    return topics;
}

} // namespace quillon
