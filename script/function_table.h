#pragma once
// The functions of the game's script language, as data.
#include <cstddef>
#include <string_view>

namespace quillon {

struct ScriptFunction {
    std::string_view name;      // lower case
    std::string_view arguments; // i an ID or text, n a number; optional after '/'; ? ignored
    // How many arguments must be given.
    std::size_t required() const;
};

// The function of that name, in any letter case; null when the game has none.
const ScriptFunction* findFunction(std::string_view name);
// True for a function of a known script extender (MWSE, MGE), which the game's own compiler lacks.
bool isExtenderFunction(std::string_view name);

} // namespace quillon
