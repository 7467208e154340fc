#include "workbench/script_findings.h"

#include "app/text.h"
#include "script/script_check.h"

#include <unordered_map>
#include <unordered_set>

namespace quillon {

namespace {

// The IDs of the file and its masters, each kind folded for lookups in any letter case.
struct LoadOrderIds {
    std::unordered_set<std::string> globals, objects, scripts, factions, journals;
    std::vector<std::string> cells;
    std::unordered_map<std::string, std::set<long>> journalIndexes;

    void add(const RecordStore& s) {
        s.forEachArray([&](const auto& array) {
            for (const auto& r : array)
                if constexpr (requires { std::string_view(r.NAME); }) objects.insert(foldedKey(r.NAME));
        });
        for (const GlobRecord& g : s.GLOB)
            globals.insert(foldedKey(g.NAME));
        for (const ScptRecord& r : s.SCPT)
            scripts.insert(foldedKey(fixedText(r.ScriptName)));
        for (const FactRecord& f : s.FACT)
            factions.insert(foldedKey(f.NAME));
        for (const CellRecord& c : s.CELL)
            cells.push_back(foldedKey(c.NAME));
        for (const DialRecord& d : s.DIAL)
            if (d.DATA == 4) journals.insert(foldedKey(d.NAME));
        for (const InfoRecord& r : s.INFO)
            if (journals.count(foldedKey(r.Topic))) journalIndexes[foldedKey(r.Topic)].insert(r.Disposition);
    }

    ScriptNames names(bool complete) const {
        auto in = [](const std::unordered_set<std::string>& set) {
            return [&set](std::string_view id) { return set.count(foldedKey(id)) != 0; };
        };
        ScriptNames n;
        n.complete = complete;
        n.global = in(globals);
        n.object = in(objects);
        n.script = in(scripts);
        n.faction = in(factions);
        n.journal = in(journals);
        // GetPCCell and PositionCell name a cell by the start of its name, as the game matches.
        n.cell = [this](std::string_view id) {
            std::string key = foldedKey(id);
            for (const std::string& c : cells)
                if (c.rfind(key, 0) == 0) return true;
            return false;
        };
        n.journalIndex = [this](std::string_view id, long index) {
            auto found = journalIndexes.find(foldedKey(id));
            return found != journalIndexes.end() && found->second.count(index);
        };
        return n;
    }
};

std::set<std::string> variablesOf(const ScptRecord& script) {
    std::set<std::string> out;
    for (const auto* list : {&script.ShortNames, &script.LongNames, &script.FloatNames})
        for (const std::string& name : *list)
            out.insert(foldedKey(name));
    return out;
}

// The local variables of the script the speaker of a response runs, in the file or its masters.
class SpeakerScripts {
public:
    SpeakerScripts(const RecordStore& own, const LoadOrder* masters) : masters_(masters) {
        for (const NpcRecord& n : own.NPC_)
            scriptOf_.emplace(foldedKey(n.NAME), n.SCRI);
        for (const CreaRecord& c : own.CREA)
            scriptOf_.emplace(foldedKey(c.NAME), c.SCRI);
        for (const ScptRecord& s : own.SCPT)
            scripts_.emplace(foldedKey(fixedText(s.ScriptName)), &s);
    }
    std::set<std::string> locals(const std::string& speaker) const {
        std::string script;
        if (auto found = scriptOf_.find(foldedKey(speaker)); found != scriptOf_.end())
            script = found->second;
        else if (masters_) {
            if (const NpcRecord* n = masters_->findInMasters(&RecordStore::NPC_, speaker)) script = n->SCRI;
            if (const CreaRecord* c = masters_->findInMasters(&RecordStore::CREA, speaker)) script = c->SCRI;
        }
        if (script.empty()) return {};
        if (auto found = scripts_.find(foldedKey(script)); found != scripts_.end())
            return variablesOf(*found->second);
        if (masters_)
            for (auto m = masters_->masters.rbegin(); m != masters_->masters.rend(); ++m)
                for (const ScptRecord& s : (*m)->store.SCPT)
                    if (equalsIgnoreCase(fixedText(s.ScriptName), script)) return variablesOf(s);
        return {};
    }

private:
    const LoadOrder* masters_;
    std::unordered_map<std::string, std::string> scriptOf_;
    std::unordered_map<std::string, const ScptRecord*> scripts_;
};

} // namespace

void checkScripts(const RecordStore& store, const LoadOrder* masters, const std::set<std::string>& kinds,
                  std::vector<Finding>& out, std::vector<std::string>& notes) {
    auto wanted = [&](const char* kind) { return kinds.empty() || kinds.count(kind); };
    if (!wanted("script") && !wanted("reference")) return;
    LoadOrderIds ids;
    if (masters)
        for (const auto& m : masters->masters)
            ids.add(m->store);
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
            if (++shown > kMostPerScript) {
                f.detail = "and more problems after line " + std::to_string(p.line) + "; fix these first";
                out.push_back(std::move(f));
                break;
            }
            f.detail = "line " + std::to_string(p.line) + ": " + readableExcerpt(p.reason, 200);
            out.push_back(std::move(f));
        }
    };
    SpeakerScripts speakers(store, masters);
    for (std::size_t i = 0; i < store.INFO.size(); ++i) {
        const InfoRecord& r = store.INFO[i];
        if (r.BNAM.empty()) continue;
        // The game's compiler reads a script up to its first NUL byte, as many end.
        std::string_view compiled = std::string_view(r.BNAM).substr(0, r.BNAM.find('\0'));
        addAll(aboutResponse(store.INFO, i, "script"),
               checkScript(compiled, ScriptSource::Result, speakers.locals(r.ONAM), names));
    }
    for (const ScptRecord& s : store.SCPT) {
        if (s.SCTX.empty()) continue;
        Finding f;
        f.record = "SCPT";
        f.id = fixedText(s.ScriptName);
        addAll(f, checkScript(std::string_view(s.SCTX).substr(0, s.SCTX.find('\0')), ScriptSource::Record, {},
                              names));
    }
    if (!extenders.empty())
        notes.push_back(
            "uses " + std::to_string(extenders.size()) +
            " function(s) of script extenders (MWSE, MGE), which the game's own compiler lacks; they "
            "are not checked");
}

} // namespace quillon
