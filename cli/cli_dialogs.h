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

// The command line's dialogs: messages go to standard error. Its flags become the session's given
// answers before a command runs, so a question that reaches these dialogs has no answer: it ends
// the command, naming the flag that answers it. Only what the user chose to be asked
// (--unknown=ask, --ask-names) is asked on the terminal.
class CliDialogs : public Dialogs {
public:
    bool interactive = false;       // questions and input boxes are put on the terminal
    std::ostream* err = &std::cerr; // where messages and warnings go

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
};

// A UTF-8 text from the terminal as the code page's bytes (a text that is not UTF-8 is taken as
// bytes already); false when a character has no byte in the page.
bool toCodePageBytes(std::string& text);

// Text for a terminal: CR LF pairs as plain line breaks, other control bytes escaped ("\x1b").
std::string forTerminal(const std::string& text);
// One line for a terminal, in UTF-8 (a text that is not UTF-8 is taken as the code page's): as
// forTerminal, with line breaks escaped too, so that a text from a file never prints a line of
// its own.
std::string terminalLine(const std::string& text);

} // namespace quillon
