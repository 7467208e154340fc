#pragma once
#include "app/dialogs.h"

#include <functional>
#include <iostream>
#include <stdexcept>
#include <string>

namespace quillon {

// A command could not go on without an answer the command line does not have.
struct CliError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Answers a command's questions from the command line's flags; messages go to standard error.
class CliDialogs : public Dialogs {
public:
    enum class Unknown { Ask, Yes, No, YesToAll, Default };
    Unknown unknown = Unknown::Default;
    bool yes = false;             // answers the savegame question with Yes
    bool no = false;              // answers it with No
    bool replaceReadOnly = false; // replace an output file that is read-only
    // What to do with output that would be damaged: --repair, --force, or write nothing.
    DamageChoice onDamage = DamageChoice::WriteNothing;
    std::ostream* err = &std::cerr; // where messages and warnings go
    std::string openPath;           // the answer to the next open dialog
    std::string savePath;           // the answer to the next save dialog
    // The texts the quote export asks for (the city, speaker names); unset, a CliError.
    std::function<std::string(const Question& what)> inputAnswer;

    void tell(const std::string& text, Icon icon) override;
    Answer ask(const Question& what, const std::string& text, Buttons buttons, Icon icon,
               const std::string& title) override;
    std::string input(const Question& what, const std::string& prompt, const std::string& title,
                      const std::string& defaultText) override;
    std::string openFile(const FileRequest& request) override;
    std::string saveFile(const FileRequest& request) override;
    std::string editResponse(const std::string& actor, const std::string& topic,
                             const std::string& text) override;
    LoopFix fixLoop(const std::string& actor, const std::string& topic, const std::string& text,
                    const std::string& result, std::int32_t choice) override;
    void editOptions(CleanupSettings&) override {}
    DamageChoice damagedOutput(const DamageReport& report) override;
    // The command line lists findings itself (quillon check).
    void showFindings(const std::vector<Finding>&, const std::function<std::string(std::size_t)>&) override {}
    void about() override {}
    void refreshLog() override {}

private:
    Answer unknownRecord(const std::string& text);
};

// Why the command line leaves a read-only output as it is.
std::string readOnlyRefusal(const std::string& path);

// Text for a terminal: CR LF pairs as plain line breaks, other control bytes escaped ("\x1b").
std::string forTerminal(const std::string& text);

} // namespace quillon
