#pragma once
// The script and reference kinds of the check: every result script and every script record's
// text read as the game's compiler reads it, with the load order's IDs.
#include "app/finding.h"
#include "app/load_order.h"
#include "records/record_store.h"

#include <set>
#include <vector>

namespace quillon {

// Adds the findings of the kinds wanted (script, reference) to out. masters is the load order
// looked up, or null when none was; references are checked only when every master was found.
// Functions of script extenders are not findings: notes gets one line saying they were passed over.
void checkScripts(const RecordStore& store, const LoadOrder* masters, const std::set<std::string>& kinds,
                  std::vector<Finding>& out, std::vector<std::string>& notes);

} // namespace quillon
