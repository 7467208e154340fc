#pragma once
// The functions of the game's script language, as data.
#include <cstddef>
#include <string_view>

namespace quillon {

struct ScriptFunction {
    std::string_view name;      // lower case
    std::string_view arguments; // n a number, a letter for each kind of ID (see the table); optional
                                // after '/'; ? taken and ignored
    // How many arguments must be given.
    std::size_t required() const;
    // How many arguments may be given.
    std::size_t most() const;
};

// The function of that name, in any letter case; null when the game has none.
const ScriptFunction* findFunction(std::string_view name);
// The game's function a name misspells by one letter (GetJournalIndx), or null: such a name is no
// variable anyone meant, even where a master could declare it.
const ScriptFunction* misspelledFunction(std::string_view name);
// True for a function of a known script extender (MWSE, MGE), which the game's own compiler lacks.
bool isExtenderFunction(std::string_view name);

} // namespace quillon
