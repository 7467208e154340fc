#pragma once
#include "app/encoding.h"

#include <functional>
#include <optional>
#include <string>

namespace quillon {

// Where to look for the game on a system without a registry of its own.
struct FolderSearch {
    std::function<std::string(const char*)> environment; // a variable's value, empty when unset
    std::string home;
};

// The environment and home folder of this process, for the searches.
FolderSearch thisSystem();

// The game's "Data Files" folder: $QUILLON_DATA_FILES; the "Installed Path" in Wine's registry
// ($WINEPREFIX or ~/.wine); a Steam library; the data= lines of OpenMW's openmw.cfg. The first
// that exists wins; empty when none does.
std::string findDataFolder(const FolderSearch& search);

// The "Installed Path" value under the game's key in a Wine system.reg text (plain or
// Wow6432Node key), with its escapes undone; empty when absent.
std::string wineInstalledPath(const std::string& systemReg);

// The game's "Data Files" folder on this system: the game's registry key on Windows, elsewhere
// findDataFolder over the environment and the home folder; empty when not found.
std::string systemDataFolder();

// The code page OpenMW's openmw.cfg sets with its encoding= line (win1250, win1251, win1252).
std::optional<CodePage> configuredCodePage(const FolderSearch& search);
// The same for this system's environment and home folder.
std::optional<CodePage> systemCodePage();

// The line the log shows when the game cannot be found.
extern const char* const kGameNotFoundWarning;

} // namespace quillon
