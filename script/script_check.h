#pragma once
// What the game's compiler, or the load order, would reject in a script: a result script of a
// response or the text of a script record.
#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

// The IDs the load order defines, asked for by the reference checks; each answers for an ID in
// any letter case. Without complete, a master is missing and an ID none of the files read
// defines may be its: references are not checked at all then.
struct ScriptNames {
    bool complete = false;
    std::function<bool(std::string_view)> global, object, script, faction, cell, journal;
    std::function<bool(std::string_view, long)> journalIndex;
};

struct ScriptProblem {
    std::size_t line = 0;
    // script; reference for an ID the load order lacks; extender for a function of a script
    // extender, which is not checked (reason holds its name)
    const char* kind = "script";
    std::string reason;
};

enum class ScriptSource { Result, Record };

// The problems of a script, in line order. locals are the variables it may use besides the
// globals (for a result script, those of the speaker's script), folded to lower case.
std::vector<ScriptProblem> checkScript(std::string_view text, ScriptSource source,
                                       std::set<std::string> locals, const ScriptNames& names);

} // namespace quillon
