#include "game/response_choice.h"

#include "app/encoding.h"
#include "app/script_variables.h"
#include "app/text.h"
#include "game/conditions.h"

namespace quillon {

namespace {

// Tries one response; the first filter that rejects it in words (UTF-8), or nothing.
class Trial {
public:
    Trial(const Speaker& speaker, const Situation& situation, std::set<std::string>& assumed)
        : speaker_(speaker), situation_(situation), assumed_(assumed) {}

    std::optional<std::string> rejection(const InfoRecord& r, bool journal) {
        if (journal) return "a journal entry is never said";
        int rank = signedByte(r.Rank), sex = signedByte(r.Gender), pcRank = signedByte(r.PCRank);
        if (!r.ONAM.empty() && !equalsIgnoreCase(r.ONAM, speaker_.id)) return "ID " + toUtf8(r.ONAM);
        if (r.ONAM.empty() && speaker_.creature) return "a creature says only what names its ID";
        if (!speaker_.creature) {
            if (!r.RNAM.empty() && !equalsIgnoreCase(r.RNAM, speaker_.race)) return "Race " + toUtf8(r.RNAM);
            if (!r.CNAM.empty() && !equalsIgnoreCase(r.CNAM, speaker_.klass))
                return "Class " + toUtf8(r.CNAM);
            if (r.FNAM == "FFFF") {
                if (!speaker_.faction.empty()) return std::string("No Faction");
            } else if (!r.FNAM.empty()) {
                if (!equalsIgnoreCase(r.FNAM, speaker_.faction) || speaker_.rank < rank)
                    return "Faction " + toUtf8(r.FNAM) +
                           (rank >= 0 ? " (rank \u2265 " + std::to_string(rank) + ")" : "");
            } else if (rank >= 0 && (speaker_.faction.empty() || speaker_.rank < rank)) {
                return "Rank \u2265 " + std::to_string(rank) + " in its own faction";
            }
            if (sex >= 0 && sex != int(speaker_.female))
                return std::string("Sex ") + (sex ? "Female" : "Male");
        }
        if (!r.DNAM.empty() || pcRank >= 0) {
            std::string faction = r.DNAM.empty() ? speaker_.faction : r.DNAM;
            auto member = situation_.playerRanks.find(foldedKey(faction));
            if (situation_.playerRanks.empty()) assumed_.insert("the player belongs to no faction");
            if (member == situation_.playerRanks.end() || member->second < pcRank)
                return r.DNAM.empty()
                           ? "PC Rank \u2265 " + std::to_string(pcRank) + " in the speaker's faction"
                           : "PC Faction " + toUtf8(r.DNAM);
        }
        if (!r.ANAM.empty()) {
            if (!situation_.cell) assumed_.insert("the player is in no cell that a filter names");
            if (!situation_.cell || !startsWithIgnoringCase(*situation_.cell, r.ANAM))
                return "Cell " + toUtf8(r.ANAM);
        }
        for (const InfoCondition& slot : r.Conditions) {
            std::optional<Condition> c = decodeCondition(slot);
            if (c && !holds(*c)) return describe(*c);
        }
        if (r.Disposition > speaker_.disposition && !speaker_.creature)
            return "Disposition \u2265 " + std::to_string(r.Disposition);
        return std::nullopt;
    }

private:
    static bool startsWithIgnoringCase(const std::string& text, const std::string& prefix) {
        return text.size() >= prefix.size() &&
               equalsIgnoreCase(std::string_view(text).substr(0, prefix.size()), prefix);
    }

    double given(const std::map<std::string, double>& values, const std::string& key,
                 const std::string& what) {
        if (auto v = values.find(key); v != values.end()) return v->second;
        assumed_.insert(what + " is 0");
        return 0;
    }

    bool holds(const Condition& c) {
        std::string key = foldedKey(c.name);
        switch (c.type) {
        case SlotType::Function:
            // Choice: no such slot holds outside the answer to a choice, whatever it compares.
            if (c.function == 50 && !situation_.choice) {
                assumed_.insert("no choice is being answered");
                return false;
            }
            return compares(c.function == 50 ? *situation_.choice : function(c.function), c.comparison,
                            c.value);
        case SlotType::Global:
            // A global the load order lacks makes the game pass over the slot.
            if (!situation_.globals.count(key)) return true;
            return compares(given(situation_.variables, key, "the global " + toUtf8(c.name)), c.comparison,
                            c.value);
        case SlotType::Local:
        case SlotType::NotLocal: {
            bool has = speaker_.locals && speaker_.locals->count(key);
            bool passes = has && compares(given(situation_.variables, key, "the local " + toUtf8(c.name)),
                                          c.comparison, c.value);
            return c.type == SlotType::Local ? passes : !passes;
        }
        case SlotType::Journal: {
            auto at = situation_.journals.find(key);
            if (at == situation_.journals.end())
                assumed_.insert("the journal " + toUtf8(c.name) + " is at 0");
            return compares(at == situation_.journals.end() ? 0 : at->second, c.comparison, c.value);
        }
        case SlotType::Item:
            assumed_.insert("the player carries no " + toUtf8(c.name));
            return compares(0, c.comparison, c.value);
        case SlotType::Dead:
            assumed_.insert("no " + toUtf8(c.name) + " has died");
            return compares(0, c.comparison, c.value);
        case SlotType::NotId: return !equalsIgnoreCase(c.name, speaker_.id);
        case SlotType::NotFaction: return !equalsIgnoreCase(c.name, speaker_.faction);
        case SlotType::NotClass: return speaker_.creature || !equalsIgnoreCase(c.name, speaker_.klass);
        case SlotType::NotRace: return speaker_.creature || !equalsIgnoreCase(c.name, speaker_.race);
        case SlotType::NotCell: return !situation_.cell || !startsWithIgnoringCase(*situation_.cell, c.name);
        }
        return true;
    }

    double function(int code) {
        if (std::string key = playerKey(code); !key.empty())
            return given(situation_.player, key, "PC " + std::string(functionName(code)).substr(3));
        assumed_.insert(std::string(functionName(code)) + " is 0");
        return 0;
    }

    const Speaker& speaker_;
    const Situation& situation_;
    std::set<std::string>& assumed_;
};

} // namespace

std::string playerKey(int function) {
    if (!isPlayerFunction(function)) return {};
    return foldedKey(std::string_view(functionName(function)).substr(3));
}

Speaker findSpeaker(const std::vector<DialogueSource>& sources, const std::string& id) {
    Speaker s;
    s.id = id;
    std::string script;
    for (const DialogueSource& source : sources) {
        for (const NpcRecord& n : source.store->NPC_) {
            if (!equalsIgnoreCase(n.NAME, id)) continue;
            s = Speaker{};
            s.id = n.NAME;
            s.found = true;
            s.race = n.RNAM;
            s.klass = n.CNAM;
            s.faction = n.ANAM;
            s.female = n.FLAG[0] & 1;
            bool full = n.NPDTSize != 12;
            s.rank = full ? n.NPDT[46] : n.NPDTShort[4];
            s.disposition = full ? n.NPDT[44] : n.NPDTShort[2];
            script = n.SCRI;
        }
        for (const CreaRecord& c : source.store->CREA) {
            if (!equalsIgnoreCase(c.NAME, id)) continue;
            s = Speaker{};
            s.id = c.NAME;
            s.found = s.creature = true;
            script = c.SCRI;
        }
    }
    if (!script.empty())
        for (const DialogueSource& source : sources)
            for (const ScptRecord& r : source.store->SCPT)
                if (equalsIgnoreCase(fixedText(r.ScriptName), script)) s.locals = scriptVariables(r);
    return s;
}

ResponseChoice chooseResponse(const MergedTopic& topic, const Speaker& speaker, const Situation& situation) {
    ResponseChoice out;
    std::set<std::string> assumed;
    Trial trial(speaker, situation, assumed);
    for (std::size_t i = 0; i < topic.responses.size(); ++i) {
        std::optional<std::string> why = trial.rejection(*topic.responses[i].info, topic.type == 4);
        if (!why) {
            out.given = i;
            break;
        }
        out.refusedOnDisposition = out.refusedOnDisposition || why->rfind("Disposition", 0) == 0;
        out.rejected.emplace_back(i, std::move(*why));
    }
    out.refusedOnDisposition = out.refusedOnDisposition && !out.given && topic.type == 0;
    out.assumed.assign(assumed.begin(), assumed.end());
    return out;
}

} // namespace quillon
