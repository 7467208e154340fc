#pragma once
// OpenMW's openmw.cfg: the data folders the engine loads content from, and its settings.
#include <string>
#include <vector>

namespace quillon {

struct FolderSearch;

struct OpenMwConfig {
    std::string path;                     // the file read; empty when there was none
    std::vector<std::string> dataFolders; // data= lines, then data-local=, in the engine's order
    std::vector<std::string> refused;     // values that name no folder this search can use, with why
    std::vector<std::pair<std::string, std::string>> settings; // every key=value, in order
    // The values of key=, in order (encoding=, content=, ...).
    std::vector<std::string> values(const std::string& key) const;
};

// Where the user's openmw.cfg lives: $XDG_CONFIG_HOME/openmw/openmw.cfg, else
// ~/.config/openmw/openmw.cfg.
std::string userOpenMwConfig(const FolderSearch& search);

// Reads the openmw.cfg at path (the user's when path is empty). A value in quotes is taken as the
// engine takes it (& escapes the next character); ?userdata? and ?userconfig? are the user's
// folders; a relative folder is taken from the file's own folder; any other ?token? is refused.
OpenMwConfig readOpenMwConfig(const FolderSearch& search, const std::string& path = {});

} // namespace quillon
