#pragma once
#include "records/record_store.h"

#include <set>
#include <string>

namespace quillon {

// The variables a script record declares (shorts, longs and floats), folded for lookups in any
// letter case.
std::set<std::string> scriptVariables(const ScptRecord& script);

} // namespace quillon
