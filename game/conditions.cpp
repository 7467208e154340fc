#include "game/conditions.h"

#include "app/encoding.h"

#include <cmath>
#include <cstdio>
#include <iterator>

namespace quillon {

namespace {

// The functions of condition slots by code, as the game's editor names them.
constexpr const char* kFunctions[] = {
    "Faction Reaction Low",
    "Faction Reaction High",
    "Rank Requirement",
    "Reputation",
    "Health Percent",
    "PC Reputation",
    "PC Level",
    "PC Health Percent",
    "PC Magicka",
    "PC Fatigue",
    "PC Strength",
    "PC Block",
    "PC Armorer",
    "PC Medium Armor",
    "PC Heavy Armor",
    "PC Blunt Weapon",
    "PC Long Blade",
    "PC Axe",
    "PC Spear",
    "PC Athletics",
    "PC Enchant",
    "PC Destruction",
    "PC Alteration",
    "PC Illusion",
    "PC Conjuration",
    "PC Mysticism",
    "PC Restoration",
    "PC Alchemy",
    "PC Unarmored",
    "PC Security",
    "PC Sneak",
    "PC Acrobatics",
    "PC Light Armor",
    "PC Short Blade",
    "PC Marksman",
    "PC Mercantile",
    "PC Speechcraft",
    "PC Hand To Hand",
    "PC Sex",
    "PC Expelled",
    "PC Common Disease",
    "PC Blight Disease",
    "PC Clothing Modifier",
    "PC Crime Level",
    "Same Sex",
    "Same Race",
    "Same Faction",
    "Faction Rank Difference",
    "Detected",
    "Alarmed",
    "Choice",
    "PC Intelligence",
    "PC Willpower",
    "PC Agility",
    "PC Speed",
    "PC Endurance",
    "PC Personality",
    "PC Luck",
    "PC Corprus",
    "Weather",
    "PC Vampire",
    "Level",
    "Attacked",
    "Talked To PC",
    "PC Health",
    "Creature Target",
    "Friend Hit",
    "Fight",
    "Hello",
    "Alarm",
    "Flee",
    "Should Attack",
    "Werewolf",
    "PC Werewolf Kills",
};
static_assert(std::size(kFunctions) == 74);

const char* typeName(SlotType type) {
    switch (type) {
    case SlotType::Function: return "Function";
    case SlotType::Global: return "Global";
    case SlotType::Local: return "Local";
    case SlotType::Journal: return "Journal";
    case SlotType::Item: return "Item";
    case SlotType::Dead: return "Dead";
    case SlotType::NotId: return "Not ID";
    case SlotType::NotFaction: return "Not Faction";
    case SlotType::NotClass: return "Not Class";
    case SlotType::NotRace: return "Not Race";
    case SlotType::NotCell: return "Not Cell";
    case SlotType::NotLocal: return "Not Local";
    }
    return "";
}

std::string number(double v) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", v);
    return text;
}

std::string sexName(int sex) {
    return sex == 0 ? "Male" : "Female";
}

} // namespace

const char* functionName(int code) {
    return code >= 0 && code < int(std::size(kFunctions)) ? kFunctions[code] : "";
}

bool isPlayerFunction(int code) {
    std::string_view name = functionName(code);
    return name.substr(0, 3) == "PC ";
}

bool isInverted(SlotType type) {
    return type == SlotType::NotId || type == SlotType::NotFaction || type == SlotType::NotClass ||
           type == SlotType::NotRace || type == SlotType::NotCell;
}

bool compares(double measured, Comparison comparison, double value) {
    switch (comparison) {
    case Comparison::Equal: return measured == value;
    case Comparison::NotEqual: return measured != value;
    case Comparison::Greater: return measured > value;
    case Comparison::GreaterOrEqual: return measured >= value;
    case Comparison::Less: return measured < value;
    case Comparison::LessOrEqual: return measured <= value;
    }
    return false;
}

const char* comparisonSign(Comparison comparison) {
    switch (comparison) {
    case Comparison::Equal: return "=";
    case Comparison::NotEqual: return "\u2260";
    case Comparison::Greater: return ">";
    case Comparison::GreaterOrEqual: return "\u2265";
    case Comparison::Less: return "<";
    case Comparison::LessOrEqual: return "\u2264";
    }
    return "?";
}

std::optional<Condition> decodeCondition(const InfoCondition& slot) {
    Condition c;
    char type = slot.Type;
    bool known = (type >= '1' && type <= '9') || (type >= 'A' && type <= 'C');
    if (!known || slot.Comparison < '0' || slot.Comparison > '5') return std::nullopt;
    c.type = SlotType(type);
    c.comparison = Comparison(slot.Comparison - '0');
    c.value = slot.FLTVSize > 0 ? double(slot.FLTV) : double(slot.INTV);
    if (c.type == SlotType::Function) {
        char a = slot.Function[0], b = slot.Function[1];
        if (a < '0' || a > '9' || b < '0' || b > '9') return std::nullopt;
        c.function = (a - '0') * 10 + (b - '0');
        if (c.function > 73) return std::nullopt;
        return c;
    }
    c.name = slot.Name;
    bool variable = c.type == SlotType::Global || c.type == SlotType::Local || c.type == SlotType::NotLocal;
    if (variable && c.name.empty()) return std::nullopt;
    return c;
}

std::string describe(const Condition& c) {
    if (c.type == SlotType::Function)
        return std::string(functionName(c.function)) + " " + comparisonSign(c.comparison) + " " +
               number(c.value);
    std::string name = toUtf8(c.name);
    if (isInverted(c.type)) return std::string(typeName(c.type)) + " " + name;
    return std::string(typeName(c.type)) + " " + name + " " + comparisonSign(c.comparison) + " " +
           number(c.value);
}

std::vector<std::string> speakerFilters(const InfoRecord& r, bool journal) {
    std::vector<std::string> out;
    int rank = signedByte(r.Rank), sex = signedByte(r.Gender), pcRank = signedByte(r.PCRank);
    if (!r.ONAM.empty()) out.push_back("ID " + toUtf8(r.ONAM));
    if (!r.RNAM.empty()) out.push_back("Race " + toUtf8(r.RNAM));
    if (!r.CNAM.empty()) out.push_back("Class " + toUtf8(r.CNAM));
    if (r.FNAM == "FFFF")
        out.push_back("No Faction");
    else if (!r.FNAM.empty())
        out.push_back("Faction " + toUtf8(r.FNAM) +
                      (rank >= 0 ? " (rank \u2265 " + std::to_string(rank) + ")" : ""));
    else if (rank >= 0)
        out.push_back("Rank \u2265 " + std::to_string(rank) + " in its own faction");
    if (sex >= 0) out.push_back("Sex " + sexName(sex));
    if (!r.DNAM.empty())
        out.push_back("PC Faction " + toUtf8(r.DNAM) +
                      (pcRank >= 0 ? " (rank \u2265 " + std::to_string(pcRank) + ")" : ""));
    else if (pcRank >= 0)
        out.push_back("PC Rank \u2265 " + std::to_string(pcRank) + " in the speaker's faction");
    if (!r.ANAM.empty()) out.push_back("Cell " + toUtf8(r.ANAM));
    if (journal)
        out.push_back("Index " + std::to_string(r.Disposition));
    else if (r.Disposition != 0)
        out.push_back("Disposition \u2265 " + std::to_string(r.Disposition));
    return out;
}

std::vector<std::string> conditionsInWords(const InfoRecord& r) {
    std::vector<std::string> out;
    for (const InfoCondition& slot : r.Conditions) {
        std::optional<Condition> c = decodeCondition(slot);
        out.push_back(c ? describe(*c)
                        : "(a slot the game drops: " + toUtf8(std::string(1, slot.Type)) + ")");
    }
    return out;
}

} // namespace quillon
