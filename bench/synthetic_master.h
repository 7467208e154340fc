#pragma once
#include <string>

namespace quillon::bench {

// A seeded synthetic master with the shape of the game's own (about 80 MB and 48,000 records at
// scale 1): the published record counts, cells dense with references, land and path grids,
// books, and some 25,000 responses of realistic prose with lore names, quotes, placeholders and
// result scripts offering choices.
std::string syntheticMaster(double scale, unsigned seed = 1);

} // namespace quillon::bench
