#pragma once
#include <string>

namespace quillon::bench {

// Times `quillon check` of many small plugins naming one master against the master's Open plus
// the plugins' own check (masters not found): a master shared by the files of one check is read
// once. Prints the figures and the ratio; returns 0.
int timeSharedMaster(const std::string& quillon, const std::string& master, int plugins, int runs);

// Times the check of the game's dialogue rules (shadowed, never, order, journal, link) on a file
// against its Open; prints the figures and the ratio; returns 0.
int timeGameRules(const std::string& quillon, const std::string& file, int runs);

} // namespace quillon::bench
