#pragma once
// What the game's compiler, or the load order, would reject in a script: a result script of a
// response or the text of a script record.
#include <cstddef>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

// The kinds of ID a function's argument names, by the letter the function table gives it.
enum class IdKind : char {
    Object = 'o',
    Spell = 's',
    Journal = 'j',
    Script = 'x',
    Faction = 'f',
    Cell = 'c',
    Sound = 'd',
    Region = 'r',
};
const char* idKindName(IdKind kind);

// The IDs the load order defines, asked for by the reference checks; each answers for an ID in
// any letter case. Without complete, a master is missing and an ID none of the files read
// defines may be its: neither references nor undeclared names are judged then.
struct ScriptNames {
    bool complete = false;
    std::function<bool(std::string_view)> global;
    std::function<bool(IdKind, std::string_view)> has;
    std::function<bool(std::string_view, long)> journalIndex;
    // The variables of the script an object runs (or of the global script of that ID), folded to
    // lower case; empty for an object that runs none; nothing when the load order has neither.
    std::function<std::optional<std::set<std::string>>(std::string_view)> localsOf;
};

struct ScriptProblem {
    std::size_t line = 0, column = 0; // the statement's, from 1
    // script; reference for an ID the load order lacks; extender for a function of a script
    // extender, which is not checked (reason holds its name)
    const char* kind = "script";
    std::string reason;
};

enum class ScriptSource { Result, Record };

// The problems of a script, in line order. locals are the variables it may use besides the
// globals (for a result script, those of the speaker's script), folded to lower case; nothing
// when they cannot be known (a response any actor may give).
std::vector<ScriptProblem> checkScript(std::string_view text, ScriptSource source,
                                       std::optional<std::set<std::string>> locals, const ScriptNames& names);

} // namespace quillon
