#pragma once
// The game's script language read line by line: each line one statement, its first word the
// keyword or function (after an explicit reference and its ->), the rest its arguments.
// Comments after ; are cut off and commas between arguments are passed over, as the game's
// compiler does.
#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

namespace quillon {

struct ScriptToken {
    enum Kind { Name, Text, Number, Symbol } kind;
    std::string_view text; // a text without its quotes
};

struct ScriptStatement {
    std::size_t line = 0;                      // from 1
    std::size_t column = 0;                    // of its first word, from 1
    std::string_view reference;                // the explicit reference before ->, if any
    ScriptToken head{ScriptToken::Symbol, {}}; // the keyword or function; a Symbol when the line has none
    std::vector<ScriptToken> arguments;
    bool unterminated = false; // a text whose closing quote is missing
};

// The statements of a script; blank and comment lines are left out.
std::vector<ScriptStatement> readScript(std::string_view script);
// The same one at a time, so that a script of millions of lines is never held as statements.
void forEachStatement(std::string_view script, const std::function<void(ScriptStatement&)>& visit);

// True when a and b are the same name in any letter case.
bool sameName(std::string_view a, std::string_view b);

} // namespace quillon
