#pragma once
// The expressions of conditions (if, elseif, while) and of set … to: numbers, variables, calls of
// the game's functions with their arguments, + - * /, comparisons and parentheses, read as the
// game's compiler reads them.
#include "script/function_table.h"
#include "script/script_reader.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

// What an expression asks of the script around it.
class ExpressionHost {
public:
    virtual ~ExpressionHost() = default;
    virtual void problem(std::string reason) = 0;
    virtual bool isVariable(std::string_view name) const = 0;
    // A name standing where a number belongs that is no function: a variable the script or
    // the load order may declare, or another object's (id.variable).
    virtual void value(std::string_view name) = 0;
    // A function called with the arguments the compiler gives it.
    virtual void call(const ScriptFunction& function, std::string_view written,
                      const std::vector<ScriptToken>& arguments) = 0;
    // A function of a script extender: the rest of the expression is not read.
    virtual void extender(std::string_view name) = 0;
};

// Reads one expression; the first fault found is told to host and ends the reading.
void checkExpression(std::span<const ScriptToken> tokens, ExpressionHost& host);

} // namespace quillon
