#include "workbench/script_findings.h"

#include "app/script_variables.h"
#include "app/text.h"
#include "script/script_check.h"

#include <unordered_map>
#include <unordered_set>

namespace quillon {

namespace {

// The IDs of the file and its masters, each kind folded for lookups in any letter case.
struct LoadOrderIds {
    std::unordered_set<std::string> globals, objects, spells, scripts, factions, journals, sounds, regions;
    std::vector<std::string> cells;
    std::unordered_map<std::string, std::set<long>> journalIndexes;
    // The script each object runs, by object; the variables of each script, by script.
    std::unordered_map<std::string, std::string> scriptOf;
    std::unordered_map<std::string, std::set<std::string>> variables;

    // The records of s; masters, when given, are the IDs below it (their journals get indexes here too).
    void add(const RecordStore& s, const LoadOrderIds* masters = nullptr) {
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
            variables[foldedKey(fixedText(r.ScriptName))] = scriptVariables(r);
        }
        for (const FactRecord& f : s.FACT)
            factions.insert(foldedKey(f.NAME));
        for (const CellRecord& c : s.CELL)
            cells.push_back(foldedKey(c.NAME));
        for (const DialRecord& d : s.DIAL)
            if (d.DATA == 4) journals.insert(foldedKey(d.NAME));
        for (const InfoRecord& r : s.INFO)
            if (std::string key = foldedKey(r.Topic);
                journals.count(key) || (masters && masters->journals.count(key)))
                journalIndexes[key].insert(r.Disposition);
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

    bool hasCell(const std::string& key) const {
        // GetPCCell and PositionCell name a cell by the start of its name, as the game matches.
        for (const std::string& c : cells)
            if (c.rfind(key, 0) == 0) return true;
        return false;
    }

    template <class Map> static const typename Map::mapped_type* in(const Map& map, const std::string& key) {
        auto found = map.find(key);
        return found == map.end() ? nullptr : &found->second;
    }
};

// The IDs of the masters, worked out once for every file naming them.
struct MasterIds {
    LoadOrderIds ids;
};

// The names of the load order: the file's own IDs before its masters'.
ScriptNames namesOf(const LoadOrderIds& own, const LoadOrderIds& masters, bool complete) {
    ScriptNames n;
    n.complete = complete;
    n.global = [&](std::string_view id) {
        std::string key = foldedKey(id);
        return own.globals.count(key) || masters.globals.count(key);
    };
    n.has = [&](IdKind kind, std::string_view id) {
        std::string key = foldedKey(id);
        if (kind == IdKind::Cell) return own.hasCell(key) || masters.hasCell(key);
        return own.of(kind).count(key) || masters.of(kind).count(key);
    };
    n.journalIndex = [&](std::string_view id, long index) {
        std::string key = foldedKey(id);
        for (const LoadOrderIds* ids : {&own, &masters})
            if (const auto* indexes = LoadOrderIds::in(ids->journalIndexes, key);
                indexes && indexes->count(index))
                return true;
        return false;
    };
    n.localsOf = [&](std::string_view id) -> std::optional<std::set<std::string>> {
        std::string key = foldedKey(id);
        const std::string* script = LoadOrderIds::in(own.scriptOf, key);
        if (!script) script = LoadOrderIds::in(masters.scriptOf, key);
        auto variablesOf = [&](const std::string& name) {
            const std::set<std::string>* found = LoadOrderIds::in(own.variables, name);
            return found ? found : LoadOrderIds::in(masters.variables, name);
        };
        if (!script && !own.objects.count(key) && !masters.objects.count(key)) {
            const std::set<std::string>* global = variablesOf(key); // a global script's, by its ID
            if (!global) return std::nullopt;
            return *global;
        }
        const std::set<std::string>* variables = script && !script->empty() ? variablesOf(*script) : nullptr;
        return variables ? *variables : std::set<std::string>{};
    };
    return n;
}

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
    static const MasterIds none;
    const LoadOrderIds& below = !masters ? none.ids
                                         : masters->derived
                                               ->get<MasterIds>([&] {
                                                   MasterIds m;
                                                   for (const auto& master : masters->masters)
                                                       m.ids.add(master->store());
                                                   return m;
                                               })
                                               .ids;
    LoadOrderIds own;
    own.add(store, &below);
    // Without masters nothing says what loads before the file (the game's master, always): only a
    // load order whose every master was found is known whole.
    bool hasMasters = !store.TES3.empty() && !store.TES3.front().Masters.empty();
    ScriptNames names = namesOf(own, below, hasMasters && masters && masters->allFound());
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
