#pragma once
// A master summary: what the checks need from a set of masters (topics and the choices their
// responses answer, IDs by record type with the scripts they run, globals, journals with their
// indexes, scripts with their variables, cells, factions with ranks, the names the spelling
// check accepts) as a small UTF-8 text file. A CI job where the game's masters cannot be present
// uses it in their place.
#include "app/load_order.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillon {

// The summary of the masters of order that were read, later masters winning as in the game.
std::string masterSummary(const LoadOrder& order);

struct MasterSummary {
    std::vector<std::string> masters; // the files it summarises, as named when it was made
    std::shared_ptr<const RecordStore> records;
    std::vector<std::string> names;
};

// Reads a summary; false, with what is wrong and on which line in error, for one that is not.
bool readMasterSummary(std::string_view text, MasterSummary& out, std::string& error);

// Puts each summary in the place of the masters of order it summarises that were not found;
// returns the names of the masters so given.
std::vector<std::string> useMasterSummary(LoadOrder& order, const MasterSummary& summary,
                                          const std::string& path);

} // namespace quillon
