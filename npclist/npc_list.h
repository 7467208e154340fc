#pragma once
#include "app/load_order.h"
#include "app/outcome.h"
#include "app/session.h"
#include "writer/safe_file.h"

#include <string>

namespace quillon {

// Csv: one UTF-8 row per NPC under a header row, for spreadsheets.
enum class NpcListFormat { PlainText, PhpBB, Html, Csv };

// The page the HTML work sheet links to.
extern const char* const kHomePage;

// Writes every NPC placed in the cells whose names hold the typed text as a work sheet for
// dialogue writers. With skipClones, generic NPCs (guards, ordinators and the like) are left out.
Outcome ExportNpcList(Session& session, Dialogs& dialogs, NpcListFormat format, bool skipClones);

// Where the list goes, and whether it may replace a read-only file there.
struct NpcListTarget {
    std::string path;
    ReadOnlyTarget readOnly = ReadOnlyTarget::Refuse;
};
// The list for the cells whose names hold answer, written without a question: the window's
// command once its answers are in, and the command line's.
Outcome writeNpcList(Session& session, Dialogs& dialogs, const NpcListTarget& target,
                     const std::string& answer, NpcListFormat format, bool skipClones);

// The work sheet for the cells whose names hold answer (any case); count gets the NPCs listed.
// With a drain, all but the returned tail has been written to it. With masters, the cells are
// those of the whole load order, merged, and NPCs and factions resolve through it.
std::string npcListSheet(const RecordStore& store, NpcListFormat format, bool skipClones,
                         const std::string& answer, int& count, SafeFileWriter* drain = nullptr,
                         const LoadOrder* masters = nullptr);

// True for the generic NPCs that the clones filter leaves out, by display name.
bool isClone(const std::string& name);

} // namespace quillon
