#pragma once
#include "records/prompts.h"

#include <cstddef>
#include <string>

namespace quillon {

// One damaged record as a line: tag, ID, where it was read and why ("CLOT "shirt", read at byte
// 1,234: written with 287 bytes, its size says 597").
std::string describeDamage(const DamagedRecord& record);

// The damaged records of a report, one per line, the first limit of them and then how many more.
std::string damageList(const DamageReport& report, std::size_t limit);

// The window's question about damaged output.
std::string damageQuestion(const DamageReport& report);

} // namespace quillon
