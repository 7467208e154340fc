#include "dialogue/dialogue_commands.h"
#include "dialogue/result_scripts.h"

#include "app/error_numbers.h"

#include <new>
#include <vector>

namespace quillon {

std::vector<std::string> linesOfferingChoice(const std::string& script, std::int32_t choice) {
    std::vector<std::string> found;
    std::vector<std::string> lines = scriptLines(script), written = writtenLines(script);
    for (std::size_t i = 0; i < lines.size(); ++i)
        if (offersChoice(lines[i], choice)) found.push_back(written[i]);
    return found;
}

namespace {

// Offers every finding for fixing; false when the user cancelled.
bool checkAll(Session& session, Dialogs& dialogs) {
    for (InfoRecord& r : session.store.INFO) {
        std::vector<std::string> lines;
        bool linesCurrent = false; // parsed once per script, again only after an accepted fix
        for (const InfoCondition& c : r.Conditions) {
            if (!isChoiceCondition(c) || r.BNAM.size() <= 5) continue;
            if (!linesCurrent) lines = scriptLines(r.BNAM);
            linesCurrent = true;
            // The lines of the script as it was before any fix accepted below.
            for (const std::string& line : lines) {
                if (!offersChoice(line, c.INTV)) continue;
                LoopFix fix = dialogs.fixLoop(r.ONAM, r.Topic, r.NAME, r.BNAM, c.INTV);
                if (fix.status == LoopFixStatus::Accept) {
                    // The sizes stay as they were; the writer writes them as stored, and the
                    // write check names the response if they no longer fit.
                    if (fix.text != r.NAME || fix.result != r.BNAM) {
                        session.store.editNotes[&r] =
                            "response text changed by the loop fix without its sizes";
                        session.modified = true;
                    }
                    r.NAME = fix.text;
                    linesCurrent = linesCurrent && fix.result == r.BNAM;
                    r.BNAM = fix.result;
                } else if (fix.status == LoopFixStatus::Cancel) {
                    return false;
                }
            }
        }
    }
    return true;
}

} // namespace

Outcome DetectLoops(Session& session, Dialogs& dialogs) {
    std::string name = bareName(session.currentPath);
    if (session.store.INFO.empty()) {
        session.log.LogLine("-\"" + name + "\" contains no dialogue responses.");
        return Outcome::declined("the file holds no dialogue responses");
    }
    session.log.LogLine("-Checking " + std::to_string(session.store.INFO.size()) + " responses from \"" +
                        name + "\" for loops...");
    dialogs.refreshLog();
    Outcome outcome = Outcome::done();
    try {
        bool finished = checkAll(session, dialogs);
        session.log.LogLine(finished ? "-Loop check successful." : "-Loop check cancelled.");
        if (!finished) outcome = Outcome::declined("the loop check was cancelled");
    } catch (const std::bad_alloc&) {
        // Fixes accepted before the failure stay.
        dialogs.tell(numberedErrorMessage(FailureKind::OutOfMemory), Icon::None);
        session.log.LogLine("-An error occured during loop detection.");
        outcome = Outcome::failed("not enough memory");
    }
    dialogs.refreshLog();
    return outcome;
}

} // namespace quillon
