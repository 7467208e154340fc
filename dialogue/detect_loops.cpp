#include "app/text.h"
#include "dialogue/dialogue_commands.h"

#include "app/error_numbers.h"

#include <new>
#include <vector>

namespace quillon {

namespace {

// A function condition on the choice function, with any comparison but not-equal.
bool isChoiceCondition(const InfoCondition& c) {
    return c.Type == '1' && c.Function[0] == '5' && c.Function[1] == '0' && c.Comparison != '1';
}

// The script as lines to match: two blanks to one (one pass, so three become two), commas gone,
// comments cut off.
std::vector<std::string> scriptLines(const std::string& script) {
    std::string text;
    text.reserve(script.size());
    for (std::size_t i = 0; i < script.size(); ++i) {
        if (script[i] == ' ' && i + 1 < script.size() && script[i + 1] == ' ') {
            text += ' ';
            ++i;
        } else if (script[i] != ',') {
            text += script[i];
        }
    }
    std::vector<std::string> lines;
    std::size_t start = 0;
    for (std::size_t at; (at = text.find("\r\n", start)) != std::string::npos; start = at + 2)
        lines.push_back(text.substr(start, at - start));
    lines.push_back(text.substr(start));
    for (std::string& line : lines)
        if (std::size_t semicolon = line.find(';'); semicolon != std::string::npos)
            line = trimBlanks(line.substr(0, semicolon));
    return lines;
}

// The choice offered last on the line, or followed by further choices.
bool offersChoice(const std::string& line, std::int32_t choice) {
    std::string number = std::to_string(choice);
    return wildcardMatch(line, "*Choice \"*\" " + number) ||
           wildcardMatch(line, "*Choice \"*\" " + number + " *");
}

} // namespace

std::vector<std::string> linesOfferingChoice(const std::string& script, std::int32_t choice) {
    std::vector<std::string> found;
    for (const std::string& line : scriptLines(script))
        if (offersChoice(line, choice)) found.push_back(line);
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
                if (fix.status == 0) {
                    // The sizes stay as they were; the writer writes them as stored, and the
                    // write check names the response if they no longer fit.
                    if (fix.text != r.NAME || fix.result != r.BNAM)
                        session.store.editNotes[&r] =
                            "response text changed by the loop fix without its sizes";
                    r.NAME = fix.text;
                    linesCurrent = linesCurrent && fix.result == r.BNAM;
                    r.BNAM = fix.result;
                } else if (fix.status == 1) {
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
