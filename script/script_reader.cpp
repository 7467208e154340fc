#include "script/script_reader.h"

#include <cctype>

namespace quillon {

namespace {

bool isNameByte(unsigned char c) {
    return std::isalnum(c) || c == '_' || c == '\'' || c == '`' || c >= 0x80;
}

// The game's compiler takes a minus inside a word as part of it: "ex_vivec-door" is one ID.
bool continuesName(std::string_view line, std::size_t at) {
    auto c = static_cast<unsigned char>(line[at]);
    return isNameByte(c) ||
           (c == '-' && at + 1 < line.size() && isNameByte(static_cast<unsigned char>(line[at + 1])));
}

bool isComparisonByte(char c) {
    return c == '=' || c == '<' || c == '>' || c == '!';
}

// A comparison as the compiler reads it: a run of = < > ! and blanks, decided by its first
// character and whether = follows (a lone = is ==, =< is ==).
std::string_view comparison(std::string_view line, std::size_t& i) {
    char first = line[i];
    bool equalsNext = false;
    std::size_t j = i + 1;
    while (j < line.size() && (isComparisonByte(line[j]) || line[j] == ' ' || line[j] == '\t')) {
        if (j == i + 1 && line[j] == '=') equalsNext = true;
        ++j;
    }
    i = j;
    switch (first) {
    case '<': return equalsNext ? "<=" : "<";
    case '>': return equalsNext ? ">=" : ">";
    case '!': return "!=";
    default: return "==";
    }
}

// Where ".variable" after an object's ID ends, when one follows at; at itself otherwise.
std::size_t variableAfter(std::string_view line, std::size_t at) {
    if (at + 1 >= line.size() || line[at] != '.' || !isNameByte(static_cast<unsigned char>(line[at + 1])))
        return at;
    std::size_t end = at + 1;
    while (end < line.size() && isNameByte(static_cast<unsigned char>(line[end])))
        ++end;
    return end;
}

// The tokens of one line, up to its comment.
std::vector<ScriptToken> tokens(std::string_view line, bool& unterminated) {
    std::vector<ScriptToken> out;
    for (std::size_t i = 0; i < line.size();) {
        auto c = static_cast<unsigned char>(line[i]);
        if (c == ';') break;
        // Commas and colons between words are passed over, as the game's compiler does
        // ("Choice: "Yes" 1" shipped with the game).
        if (std::isspace(c) || c == ',' || c == ':') {
            ++i;
        } else if (c == '"') {
            std::size_t close = line.find('"', i + 1);
            unterminated = close == std::string_view::npos;
            std::size_t end = unterminated ? line.size() : close,
                        next = unterminated ? line.size() : close + 1;
            if (std::size_t after = variableAfter(line, next); after != next) {
                // "some id".variable: another object's variable, a name like any other.
                out.push_back({ScriptToken::Name, line.substr(i, after - i)});
                i = after;
            } else {
                out.push_back({ScriptToken::Text, line.substr(i + 1, end - i - 1)});
                i = next;
            }
        } else if (isNameByte(c)) {
            std::size_t start = i;
            bool number = true;
            while (i < line.size()) {
                if (number && line[i] == '.' && i + 1 < line.size() &&
                    std::isdigit(static_cast<unsigned char>(line[i + 1]))) {
                    ++i;
                    continue;
                }
                if (number ? !isNameByte(static_cast<unsigned char>(line[i])) : !continuesName(line, i))
                    break;
                number = number && std::isdigit(static_cast<unsigned char>(line[i]));
                ++i;
            }
            if (!number) i = variableAfter(line, i); // some_id.variable
            out.push_back({number ? ScriptToken::Number : ScriptToken::Name, line.substr(start, i - start)});
        } else if (isComparisonByte(line[i])) {
            out.push_back({ScriptToken::Symbol, comparison(line, i)});
        } else {
            // [ and ] stand for ( and ), as the compiler allows.
            std::string_view symbol = c == '['                    ? "("
                                      : c == ']'                  ? ")"
                                      : line.substr(i, 2) == "->" ? "->"
                                                                  : line.substr(i, 1);
            out.push_back({ScriptToken::Symbol, symbol});
            i += symbol == "->" ? 2 : 1;
        }
    }
    return out;
}

} // namespace

bool sameName(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

std::vector<ScriptStatement> readScript(std::string_view script) {
    std::vector<ScriptStatement> out;
    forEachStatement(script, [&](ScriptStatement& s) { out.push_back(std::move(s)); });
    return out;
}

void forEachStatement(std::string_view script, const std::function<void(ScriptStatement&)>& visit) {
    std::size_t number = 0;
    for (std::size_t start = 0; start <= script.size();) {
        std::size_t end = script.find('\n', start);
        if (end == std::string_view::npos) end = script.size();
        ++number;
        ScriptStatement s;
        s.line = number;
        std::vector<ScriptToken> line = tokens(script.substr(start, end - start), s.unterminated);
        std::size_t lineStart = start;
        start = end + 1;
        if (line.empty()) continue;
        std::size_t head = 0;
        if (line.size() >= 3 && line[1].kind == ScriptToken::Symbol && line[1].text == "->" &&
            line[0].kind != ScriptToken::Symbol) {
            s.reference = line[0].text;
            head = 2;
        }
        s.head = line[head];
        // A text's view starts after its quote; a symbol read as another ([ as () views no byte of
        // the script.
        const char* first = line[0].text.data();
        bool inScript =
            std::less_equal<>()(script.data(), first) && std::less<>()(first, script.data() + script.size());
        s.column = inScript ? std::size_t(first - script.data()) - lineStart + 1 -
                                  (line[0].kind == ScriptToken::Text)
                            : 1;
        s.arguments.assign(line.begin() + std::ptrdiff_t(head) + 1, line.end());
        visit(s);
    }
}

} // namespace quillon
