#pragma once
// What every command of the command line works with, and the helpers they share.
#include "app/cleanup_settings.h"
#include "app/finding.h"
#include "app/outcome.h"
#include "app/session.h"
#include "cli/arguments.h"
#include "cli/cli_dialogs.h"
#include "workbench/spell_checker.h"

#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace quillon {

struct Context {
    const Arguments& args;
    std::ostream& out;
    std::ostream& err;
    Session session;
    CliDialogs dialogs;
    // What a check holds besides the records, left to the process's exit with them: a dictionary
    // and a large master's findings take milliseconds to take apart.
    std::unique_ptr<SpellChecker> spelling;
    std::vector<std::vector<Finding>> findings;
};

// A failure exits with 1; a command that declined did what the answers given asked for.
inline int exitStatus(const Outcome& outcome) {
    return outcome.isFailed() ? 1 : 0;
}
// The clean-up switches given as flags (--all for every one).
CleanupSettings cleanupSettings(const Arguments& args);
// A response as the command line names it: INFO ID (topic "T", actor "A").
std::string responseName(const std::string& id, const std::string& topic, const std::string& actor);
// A text on one line: quoted, its line breaks shown as \r and \n.
std::string oneLine(const std::string& text);

// A JSON array of items, one a line.
void printJson(std::ostream& out, const std::vector<std::string>& items);

// The workbench: check, diff-dialogue and the loop list of several files.
int checkCommand(Context& c);
int masterSummaryCommand(Context& c);

// The game's view of dialogue: the merged order, and which response a speaker gives.
int dialogueCommand(Context& c);
int whoSaysCommand(Context& c);
int linksCommand(Context& c);
int diffDialogueCommand(Context& c);
int loopsCommand(Context& c);

// Translation: the PO template, a PO applied, a PO checked.
int translateTemplateCommand(Context& c);
int translateCommand(Context& c);
int checkTranslationCommand(Context& c);

} // namespace quillon
