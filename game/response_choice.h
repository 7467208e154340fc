#pragma once
// Which response of a topic the game gives a speaker, tried top-down in the merged order: the
// first whose filters all hold. For each response above it, the first filter that rejected it.
// What the caller does not give about the player and the world is taken as 0 (no faction, no
// item, quest not started), and each such assumption is named.
#include "game/dialogue_order.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace quillon {

// The speaker as its record defines it (the last file of the load order defining it wins).
struct Speaker {
    std::string id;
    bool found = false, creature = false, female = false;
    std::string race, klass, faction; // the faction is the primary one
    int rank = 0;
    int disposition = 0;                         // the base disposition of its record
    std::optional<std::set<std::string>> locals; // its script's variables (folded); none without a script
};
Speaker findSpeaker(const std::vector<DialogueSource>& sources, const std::string& id);

// What the player and the world are, each by folded key.
struct Situation {
    std::map<std::string, double> player;    // the player functions by their names less "PC " ("level")
    std::map<std::string, int> playerRanks;  // factions the player belongs to, with the rank
    std::map<std::string, double> variables; // globals and the speaker's locals
    std::map<std::string, int> journals;
    std::optional<std::string> cell; // the player's, which the speaker shares
    std::optional<int> choice;       // the answer picked, when answering a choice
    std::set<std::string> globals;   // the globals the load order defines
};

struct ResponseChoice {
    std::optional<std::size_t> given;                          // the index of the response given
    std::vector<std::pair<std::size_t, std::string>> rejected; // each response above it, and why
    std::vector<std::string> assumed;                          // UTF-8
    // None was given, and one failed on the speaker's disposition alone: the game then looks in
    // "Info Refusal" (for a topic the player clicked).
    bool refusedOnDisposition = false;
};

ResponseChoice chooseResponse(const MergedTopic& topic, const Speaker& speaker, const Situation& situation);

// The key of a player function as --pc takes it: "PC Blunt Weapon" is "blunt weapon"; empty for
// a function not about the player.
std::string playerKey(int function);

} // namespace quillon
