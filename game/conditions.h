#pragma once
// A response's filters as the game reads them: its condition slots (SCVR with INTV or FLTV)
// decoded into a typed form, and each filter, speaker and condition alike, printed in words.
#include "records/types_dialogue.h"

#include <optional>
#include <string>
#include <vector>

namespace quillon {

// The kinds of slot, by the character the SCVR gives them.
enum class SlotType : char {
    Function = '1',
    Global = '2',
    Local = '3',
    Journal = '4',
    Item = '5',
    Dead = '6',
    NotId = '7',
    NotFaction = '8',
    NotClass = '9',
    NotRace = 'A',
    NotCell = 'B',
    NotLocal = 'C',
};

enum class Comparison { Equal, NotEqual, Greater, GreaterOrEqual, Less, LessOrEqual };

struct Condition {
    SlotType type = SlotType::Function;
    int function = -1; // for a Function slot, its code (0 to 73)
    Comparison comparison = Comparison::Equal;
    std::string name; // the variable, quest, item, actor, faction, class, race or cell
    double value = 0;
};

// The condition a slot holds; nothing for one the game drops (too short, an unknown type,
// comparison or function code, a variable without a name).
std::optional<Condition> decodeCondition(const InfoCondition& slot);
// The function of that code in words ("PC Level", "Choice"); empty for a code the game lacks.
const char* functionName(int code);
// True when the function is about the player ("PC Level", "PC Sex", the skills and attributes).
bool isPlayerFunction(int code);
// The value kind: inverted slots (Not ID, Not Faction, ...) ignore their comparison and value.
bool isInverted(SlotType type);
// measured <comparison> value.
bool compares(double measured, Comparison comparison, double value);
// "≥" and the like.
const char* comparisonSign(Comparison comparison);

// UTF-8: "PC Level ≥ 10", "Not Local NoLore = 0", "Journal MS_Trade ≥ 50", "Not ID fargoth".
std::string describe(const Condition& condition);
// UTF-8, in the order the game tests them: the speaker's ID, race, class, faction and rank, sex;
// the player's faction and rank, the cell; disposition (a journal entry's index instead).
std::vector<std::string> speakerFilters(const InfoRecord& r, bool journal);
// The conditions in words, in slot order; a slot the game drops is named so.
std::vector<std::string> conditionsInWords(const InfoRecord& r);

// A byte of DATA that means "none" when all its bits are set (rank, sex, PC rank).
inline int signedByte(std::uint8_t b) {
    return b == 0xFF ? -1 : int(b);
}

} // namespace quillon
