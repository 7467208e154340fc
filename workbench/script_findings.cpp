#include "workbench/script_findings.h"

#include "app/text.h"
#include "script/script_check.h"

#include <unordered_map>
#include <unordered_set>

namespace quillon {

namespace {

std::set<std::string> variablesOf(const ScptRecord& script) {
    std::set<std::string> out;
    for (const auto* list : {&script.ShortNames, &script.LongNames, &script.FloatNames})
        for (const std::string& name : *list)
            out.insert(foldedKey(name));
    return out;
}

// The IDs of the file and its masters, each kind folded for lookups in any letter case.
struct LoadOrderIds {
    std::unordered_set<std::string> globals, objects, spells, scripts, factions, journals, sounds, regions;
    std::vector<std::string> cells;
    std::unordered_map<std::string, std::set<long>> journalIndexes;
    // The script each object runs, by object; the variables of each script, by script.
    std::unordered_map<std::string, std::string> scriptOf;
    std::unordered_map<std::string, std::set<std::string>> variables;

    void add(const RecordStore& s) {
        s.forEachArray([&](const auto& array) {
            // A response's NAME is its text, no ID.
            if constexpr (std::is_same_v<typename std::decay_t<decltype(array)>::value_type, InfoRecord>)
                return;
            for (const auto& r : array) {
                if constexpr (requires { std::string_view(r.NAME); }) objects.insert(foldedKey(r.NAME));
                if constexpr (requires { std::string_view(r.SCRI); })
                    scriptOf[foldedKey(r.NAME)] = foldedKey(r.SCRI);
            }
        });
        for (const GlobRecord& g : s.GLOB)
            globals.insert(foldedKey(g.NAME));
        for (const SpelRecord& r : s.SPEL)
            spells.insert(foldedKey(r.NAME));
        for (const SounRecord& r : s.SOUN)
            sounds.insert(foldedKey(r.NAME));
        for (const RegnRecord& r : s.REGN)
            regions.insert(foldedKey(r.NAME));
        for (const ScptRecord& r : s.SCPT) {
            scripts.insert(foldedKey(fixedText(r.ScriptName)));
            variables[foldedKey(fixedText(r.ScriptName))] = variablesOf(r);
        }
        for (const FactRecord& f : s.FACT)
            factions.insert(foldedKey(f.NAME));
        for (const CellRecord& c : s.CELL)
            cells.push_back(foldedKey(c.NAME));
        for (const DialRecord& d : s.DIAL)
            if (d.DATA == 4) journals.insert(foldedKey(d.NAME));
        for (const InfoRecord& r : s.INFO)
            if (journals.count(foldedKey(r.Topic))) journalIndexes[foldedKey(r.Topic)].insert(r.Disposition);
    }

    const std::unordered_set<std::string>& of(IdKind kind) const {
        switch (kind) {
        case IdKind::Spell: return spells;
        case IdKind::Journal: return journals;
        case IdKind::Script: return scripts;
        case IdKind::Faction: return factions;
        case IdKind::Sound: return sounds;
        case IdKind::Region: return regions;
        default: return objects;
        }
    }

    ScriptNames names(bool complete) const {
        ScriptNames n;
        n.complete = complete;
        n.global = [this](std::string_view id) { return globals.count(foldedKey(id)) != 0; };
        n.has = [this](IdKind kind, std::string_view id) {
            std::string key = foldedKey(id);
            if (kind != IdKind::Cell) return of(kind).count(key) != 0;
            // GetPCCell and PositionCell name a cell by the start of its name, as the game matches.
            for (const std::string& c : cells)
                if (c.rfind(key, 0) == 0) return true;
            return false;
        };
        n.journalIndex = [this](std::string_view id, long index) {
            auto found = journalIndexes.find(foldedKey(id));
            return found != journalIndexes.end() && found->second.count(index);
        };
        n.localsOf = [this](std::string_view id) -> std::optional<std::set<std::string>> {
            std::string key = foldedKey(id);
            auto object = scriptOf.find(key);
            if (object == scriptOf.end() && !objects.count(key)) {
                auto script = variables.find(key); // a global script's variables, by its ID
                if (script == variables.end()) return std::nullopt;
                return script->second;
            }
            if (object == scriptOf.end() || object->second.empty()) return std::set<std::string>{};
            auto script = variables.find(object->second);
            return script == variables.end() ? std::set<std::string>{} : script->second;
        };
        return n;
    }
};

// The variables a response's result script may use besides the globals: those of its speaker's
// script; not known for a response any actor may give.
std::optional<std::set<std::string>> speakerLocals(const ScriptNames& names, const std::string& speaker) {
    if (speaker.empty()) return std::nullopt;
    return names.localsOf(speaker);
}

} // namespace

void checkScripts(const RecordStore& store, const LoadOrder* masters, const std::set<std::string>& kinds,
                  std::vector<Finding>& out, std::vector<std::string>& notes) {
    auto wanted = [&](const char* kind) { return kinds.empty() || kinds.count(kind); };
    if (!wanted("script") && !wanted("reference")) return;
    LoadOrderIds ids;
    if (masters)
        for (const auto& m : masters->masters)
            ids.add(m->store());
    ids.add(store);
    // Without masters nothing says what loads before the file (the game's master, always): only a
    // load order whose every master was found is known whole.
    bool hasMasters = !store.TES3.empty() && !store.TES3.front().Masters.empty();
    ScriptNames names = ids.names(hasMasters && masters && masters->allFound());
    std::set<std::string> extenders;
    // One script's problems, the first kMostPerScript of them and then how many more: a script of
    // a million broken lines says so in a few lines, not a million.
    constexpr std::size_t kMostPerScript = 100;
    auto addAll = [&](const Finding& about, const std::vector<ScriptProblem>& problems) {
        std::size_t shown = 0;
        for (const ScriptProblem& p : problems) {
            if (std::string_view(p.kind) == "extender") extenders.insert(foldedKey(p.reason));
            if (!wanted(p.kind)) continue;
            Finding f = about;
            f.kind = p.kind;
            f.line = p.line;
            f.column = p.column;
            if (++shown > kMostPerScript) {
                f.detail = "and more problems after line " + std::to_string(p.line) + "; fix these first";
                out.push_back(std::move(f));
                break;
            }
            f.detail = "line " + std::to_string(p.line) + ": " + readableExcerpt(p.reason, 200);
            out.push_back(std::move(f));
        }
    };
    for (std::size_t i = 0; i < store.INFO.size(); ++i) {
        const InfoRecord& r = store.INFO[i];
        if (r.BNAM.empty()) continue;
        // The game's compiler reads a script up to its first NUL byte, as many end.
        std::string_view compiled = std::string_view(r.BNAM).substr(0, r.BNAM.find('\0'));
        addAll(aboutResponse(store.INFO, i, "script"),
               checkScript(compiled, ScriptSource::Result, speakerLocals(names, r.ONAM), names));
    }
    for (const ScptRecord& s : store.SCPT) {
        if (s.SCTX.empty()) continue;
        Finding f;
        f.record = "SCPT";
        f.id = fixedText(s.ScriptName);
        addAll(f, checkScript(std::string_view(s.SCTX).substr(0, s.SCTX.find('\0')), ScriptSource::Record,
                              std::set<std::string>{}, names));
    }
    if (!extenders.empty())
        notes.push_back(
            "uses " + std::to_string(extenders.size()) +
            " function(s) of script extenders (MWSE, MGE), which the game's own compiler lacks; they "
            "are not checked");
}

} // namespace quillon
