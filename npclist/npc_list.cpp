#include "npclist/npc_list.h"

#include "app/encoding.h"
#include "app/error_numbers.h"
#include "app/merged_cells.h"
#include "app/replace_target.h"

#include "app/text.h"
#include "writer/safe_file.h"

#include <cstdio>
#include <filesystem>
#include <new>
#include <unordered_map>
#include <vector>

namespace quillon {

const char* const kHomePage = "https://quillon.org/download";

namespace {

const char* const kBreak = "\r\n";

struct Entry {
    std::string name, gender, race, cls, faction;
    std::string factionId, rank; // the faction apart, for the spreadsheet
};

// The seven fields of an entry with the colours the work sheet uses for them.
struct Field {
    const char* phpColour;
    const char* htmlColour;
};
constexpr Field kFields[7] = {{"white", "#FFFFFF"},  {"red", "#FF0000"},   {"orange", "#FF9933"},
                              {"yellow", "#FFFF00"}, {"green", "#00FF00"}, {"blue", "#0066FF"},
                              {"purple", "#800080"}};

std::vector<std::string> values(const Entry& e) {
    return {e.name, e.gender, e.race, e.cls, e.faction, "***Description***", "***To be asigned***"};
}

class Sheet {
public:
    // With a drain, the sheet is handed on in chunks as it grows rather than kept whole.
    Sheet(NpcListFormat format, const std::string& answer, SafeFileWriter* drain)
        : format_(format), drain_(drain) {
        header(answer);
    }

    void cellHeader(const std::string& title) {
        cell_ = title.substr(0, title.size() - 1); // without its colon
        switch (format_) {
        case NpcListFormat::Csv: break;
        case NpcListFormat::PhpBB: out_ += title + kBreak + kBreak + "[list]" + kBreak; break;
        case NpcListFormat::PlainText: out_ += title + kBreak + kBreak; break;
        case NpcListFormat::Html:
            out_ += title + kBreak + "<br>" + kBreak + "<br>" + kBreak + "<ul>" + kBreak;
            break;
        }
    }
    void entry(const Entry& e) {
        std::vector<std::string> v = values(e);
        switch (format_) {
        case NpcListFormat::Csv:
            for (const std::string* value : std::initializer_list<const std::string*>{
                     &cell_, &e.name, &e.gender, &e.race, &e.cls, &e.factionId, &e.rank})
                out_ += csvField(toUtf8(*value)) + ",";
            out_ += std::string(",") + kBreak; // description and writer, for the team to fill in
            break;
        case NpcListFormat::PhpBB:
            out_ += "[*]";
            for (std::size_t i = 0; i < 7; ++i)
                out_ += std::string("[color=") + kFields[i].phpColour + "]" + v[i] + "[/color]" + kBreak;
            out_ += kBreak;
            break;
        case NpcListFormat::PlainText:
            for (const std::string& value : v)
                out_ += value + kBreak;
            out_ += kBreak;
            break;
        case NpcListFormat::Html:
            out_ += std::string("<li>") + kBreak;
            for (std::size_t i = 0; i < 7; ++i)
                out_ += std::string("<font color=\"") + kFields[i].htmlColour + "\">" + v[i] + "</font><br>" +
                        kBreak;
            out_ += std::string("<br>") + kBreak + "</li>" + kBreak;
            break;
        }
        if (drain_ && out_.size() >= (1 << 20)) {
            drain_->write(out_);
            out_.clear();
        }
    }
    void cellFooter() {
        if (format_ == NpcListFormat::Csv) return;
        if (format_ == NpcListFormat::PhpBB) out_ += "[/list]";
        if (format_ == NpcListFormat::Html) out_ += "</ul>";
        out_ += std::string(kBreak) + kBreak + kBreak;
    }
    std::string finish(int count) {
        if (format_ == NpcListFormat::Csv) return std::move(out_);
        out_ += "Total NPCs: " + std::to_string(count);
        if (format_ == NpcListFormat::Html)
            out_ += std::string(kBreak) + "</body>" + kBreak + "</html>" + kBreak;
        return std::move(out_);
    }

private:
    void header(const std::string& answer) {
        static const char* const legend[8] = {"White - Name",    "Red - Gender",    "Orange - Race",
                                              "Yellow - Class",  "Green - Faction", "Blue - Description",
                                              "Purple - Writer", "Gray - DONE"};
        static const char* const php[8] = {"white", "red",  "orange", "yellow",
                                           "green", "blue", "purple", "gray"};
        static const char* const html[8] = {"#FFFFFF", "#FF0000", "#FF9933", "#FFFF00",
                                            "#00FF00", "#0066FF", "#800080", "#808080"};
        if (format_ == NpcListFormat::Csv) {
            out_ += std::string("cell,name,gender,race,class,faction,rank,description,writer") + kBreak;
        } else if (format_ == NpcListFormat::PhpBB) {
            out_ += std::string("COLOR CODE:") + kBreak;
            for (int i = 0; i < 8; ++i)
                out_ += std::string("[color=") + php[i] + "]" + legend[i] + "[/color]" + kBreak;
            out_ += std::string(kBreak) + kBreak;
        } else if (format_ == NpcListFormat::Html) {
            const std::string b = kBreak;
            out_ += "<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 4.01 Transitional//EN\"" + b +
                    "\"http://www.w3.org/TR/html4/loose.dtd\">" + b + "<html>" + b + "<head>" + b +
                    "<meta http-equiv=\"Content-Language\" content=\"en-us\">" + b +
                    "<meta http-equiv=\"Content-Type\" content=\"text/html; charset=" +
                    codePageName(activeCodePage()) + "\">" + b + "<title>NPCs List for " + answer +
                    " by Quillon</title>" + b + "</head>" + b +
                    "<body bgcolor=\"#000000\" text=\"#00FFFF\">" + b + "<p align=\"center\">NPCs List for " +
                    answer + " by <a href=\"" + kHomePage + "\">Quillon</a></p>" + b + "<br>" + b +
                    "Color code:<br>" + b + "<br>" + b;
            for (int i = 0; i < 8; ++i)
                out_ += std::string("<font color=\"") + html[i] + "\">" + legend[i] + "</font><br>" + b;
            out_ += "<br>" + b + "<br>" + b + "<br>" + b;
        }
    }

    NpcListFormat format_;
    SafeFileWriter* drain_;
    std::string out_;
    std::string cell_; // the title of the cell being listed
};

// The NPCs and factions a sheet names, by folded ID: the file's own first (the first faction
// record of an ID winning, every NPC record of an ID listed, as a walk in store order would), then
// with a load order the masters' from the last to the first.
class Lookups {
public:
    Lookups(const RecordStore& store, const LoadOrder* masters) : masters_(masters) {
        for (std::size_t i = 0; i < store.NPC_.size(); ++i)
            npcs_[foldedKey(store.NPC_[i].NAME)].push_back(&store.NPC_[i]);
        for (const FactRecord& f : store.FACT)
            factions_.emplace(foldedKey(f.NAME), &f);
    }
    std::vector<const NpcRecord*> npcs(std::string_view id) const {
        if (auto found = npcs_.find(foldedKey(id)); found != npcs_.end()) return found->second;
        if (!masters_) return {};
        const NpcRecord* npc = masters_->findInMasters(&RecordStore::NPC_, id);
        return npc ? std::vector<const NpcRecord*>{npc} : std::vector<const NpcRecord*>{};
    }
    const FactRecord* faction(const std::string& id) const {
        if (auto found = factions_.find(foldedKey(id)); found != factions_.end()) return found->second;
        return masters_ ? masters_->findInMasters(&RecordStore::FACT, id) : nullptr;
    }

private:
    const LoadOrder* masters_;
    std::unordered_map<std::string, std::vector<const NpcRecord*>> npcs_;
    std::unordered_map<std::string, const FactRecord*> factions_;
};

// The title of the NPC's rank in its faction, cut at its first NUL; empty when not found.
std::string rankTitle(const Lookups& lookups, const NpcRecord& npc) {
    unsigned rank = npc.NPDTSize == 12 ? npc.NPDTShort[4] : npc.NPDT[46];
    const FactRecord* f = lookups.faction(npc.ANAM);
    if (!f) return {};
    return rank < f->Ranks.size() ? fixedText(f->Ranks[rank].RNAM) : std::string();
}

Entry entryFor(const Lookups& lookups, const NpcRecord& npc) {
    Entry e{npc.FNAM, (npc.FLAG[0] & 1) ? "F" : "M", npc.RNAM, npc.CNAM, "None", {}, {}};
    if (npc.ANAM.size() >= 2) {
        e.factionId = npc.ANAM;
        e.rank = rankTitle(lookups, npc);
        e.faction = e.factionId + ", " + e.rank;
    }
    return e;
}

// The file's own cells, each with every reference it holds.
std::vector<MergedCell> ownCells(const RecordStore& store) {
    std::vector<MergedCell> cells(store.CELL.size());
    for (std::size_t i = 0; i < cells.size(); ++i) {
        cells[i].cell = &store.CELL[i];
        for (const CellReference& ref : store.CELL[i].References)
            cells[i].references.push_back(&ref);
    }
    return cells;
}

std::string cellTitle(const CellRecord& cell) {
    std::string title = cell.NAME;
    // A region marks an exterior cell, whose grid is shown.
    if (cell.RGNNSize != 0)
        title += " (" + std::to_string(cell.GridX) + ", " + std::to_string(cell.GridY) + ")";
    return title + ":";
}

} // namespace

bool isClone(const std::string& name) {
    // Tested in this order; three are parts of names, the rest whole names.
    static const char* const tests[] = {
        "guard",          "ordinator",       "dead ordinator", "imperial archer", "dreamer",
        "dead dreamer",   "dreamer worker",  "adventurer",     "player",          "vampire",
        "playersavegame", "egg miner",       "dead egg miner", "dead body",       "sharpshooter",
        "cattle",         "buoyant armiger", "worshipper"};
    for (const char* test : tests) {
        std::string_view t = test;
        bool part = t == "guard" || t == "adventurer" || t == "sharpshooter";
        if (part ? containsIgnoreCase(name, t) : equalsIgnoreCase(name, t)) return true;
    }
    return false;
}

std::string npcListSheet(const RecordStore& store, NpcListFormat format, bool skipClones,
                         const std::string& answer, int& count, SafeFileWriter* drain,
                         const LoadOrder* masters) {
    Lookups lookups(store, masters);
    // The prompt says the search is case sensitive; it is not, and the prompt stays as it is.
    Sheet sheet(format, answer, drain);
    count = 0;
    for (const MergedCell& merged : masters ? mergedCells(*masters, store) : ownCells(store)) {
        const CellRecord& cell = *merged.cell;
        if (!containsIgnoreCase(cell.NAME, answer)) continue;
        bool listed = false;
        for (const CellReference* ref : merged.references) {
            for (const NpcRecord* npc : lookups.npcs(ref->NAME)) {
                if (skipClones && isClone(npc->FNAM)) continue;
                if (!listed) sheet.cellHeader(cellTitle(cell));
                listed = true;
                sheet.entry(entryFor(lookups, *npc));
                ++count;
            }
        }
        if (listed) sheet.cellFooter();
    }
    return sheet.finish(count);
}

namespace {

// Failed, with the message, when neither the file nor (with masters) the load order holds cells
// and NPCs to list.
Outcome checkCellsAndNpcs(Session& session, Dialogs& dialogs) {
    // With the load order the cells and NPCs are those of every file; the checks read the
    // displayed counts otherwise, not the store.
    const LoadOrder* masters = session.useMasters ? &sessionMasters(session) : nullptr;
    auto inMasters = [&](auto array) {
        if (masters)
            for (const auto& m : masters->masters)
                if (!(m->store().*array).empty()) return true;
        return false;
    };
    if (session.counts.number(CountLabel::CELL) <= 0 && !inMasters(&RecordStore::CELL)) {
        dialogs.tell("No cells found in current file.", Icon::None);
        return Outcome::failed("the file holds no cells");
    }
    if (session.counts.number(CountLabel::NPC_) <= 0 && !inMasters(&RecordStore::NPC_)) {
        dialogs.tell("No NPCs found in current file.", Icon::None);
        return Outcome::failed("the file holds no NPCs");
    }
    return Outcome::done();
}

} // namespace

Outcome ExportNpcList(Session& session, Dialogs& dialogs, NpcListFormat format, bool skipClones) {
    if (Outcome source = checkCellsAndNpcs(session, dialogs); source.isFailed()) return source;
    FileRequest request;
    request.filter = format == NpcListFormat::Html
                         ? "HTML files (*.htm, *.html)|*.htm;*.html|All Files (*.*)| *.*"
                     : format == NpcListFormat::Csv ? "CSV files (*.csv)|*.csv|All Files (*.*)| *.*"
                                                    : "Text Files (*.txt)|*.txt|All Files (*.*)| *.*";
    request.defaultExtension = format == NpcListFormat::Html  ? ".htm"
                               : format == NpcListFormat::Csv ? ".csv"
                                                              : ".txt";
    request.initialFolder = session.openFolder;
    request.flags = PromptOverwrite;
    std::string path = dialogs.saveFile(request);
    if (path.empty()) return Outcome::declined("no file was chosen");
    // The old list stays until the new one is complete: a cancelled cell name keeps it.
    std::optional<ReadOnlyTarget> readOnly = replaceableTarget(session, dialogs, path);
    if (!readOnly) return Outcome::declined("\"" + bareName(path) + "\" is read-only");
    std::string answer = dialogs.input(
        {QuestionId::CellName}, "Enter any part of cell name:\r\n\r\nNOTE: Case sensitive", "Quillon", "");
    if (answer.empty()) return Outcome::declined("no cell name was given");
    return writeNpcList(session, dialogs, {path, *readOnly}, answer, format, skipClones);
}

Outcome writeNpcList(Session& session, Dialogs& dialogs, const NpcListTarget& target,
                     const std::string& answer, NpcListFormat format, bool skipClones) {
    if (Outcome source = checkCellsAndNpcs(session, dialogs); source.isFailed()) return source;
    const std::string& path = target.path;
    const LoadOrder* masters = session.useMasters ? &sessionMasters(session) : nullptr;
    std::string dataName = bareName(session.currentPath);
    session.log.LogLine("-Generating NPC List for cell \"*" + answer + "*\" from \"" + dataName + "\"...");
    dialogs.refreshLog();

    auto fail = [&](FailureKind kind) {
        dialogs.tell(numberedErrorMessage(kind), Icon::None);
        session.log.LogLine("-An error occured during NPC listing. The list may be incomplete.");
        return Outcome::failed(kind == FailureKind::OutOfMemory ? "not enough memory"
                                                                : "the list could not be written");
    };
    int count = 0;
    SafeFileWriter file(path, target.readOnly);
    try {
        file.write(npcListSheet(session.store, format, skipClones, answer, count, &file, masters));
    } catch (const std::bad_alloc&) {
        file.commit(); // what was written so far stays, as the message says
        return fail(FailureKind::OutOfMemory);
    }
    if (!file.commit().empty()) return fail(writeFailureKind(file.systemError()));
    if (count > 0)
        session.log.LogLine("-Listed " + std::to_string(count) + " NPCs in \"" + bareName(path) +
                            "\" successfully.");
    else
        session.log.LogLine("-No NPCs found in given cell in \"" + dataName + "\"");
    return Outcome::done();
}

} // namespace quillon
