#pragma once
#include <string>

namespace quillon::bench {

// The shape of a synthetic master: how dense its cells are, how large its land and books, how
// many responses it holds and what share of the game's other objects.
struct Profile {
    int referencesMin = 20, referencesMax = 250;
    int staticPercent = 90;
    int landMin = 20000, landMax = 30000;
    int responses = 25000;
    int bookMax = 42000;
    double objectShare = 1.0;
};

// The game's own shape, and one dense with placed objects (some 380,000 references in 2,538
// cells, 93% statics, land of about 30 KB, 24,000 responses) as a large master of a mod looks.
const Profile& gameProfile();
const Profile& referenceDenseProfile();

// A seeded synthetic master with the shape of the game's own (about 80 MB and 48,000 records at
// scale 1): the published record counts, cells dense with references, land and path grids,
// books, and some 25,000 responses of realistic prose with lore names, quotes, placeholders and
// result scripts offering choices.
std::string syntheticMaster(const Profile& profile, double scale, unsigned seed = 1);

} // namespace quillon::bench
