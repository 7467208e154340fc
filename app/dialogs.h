#pragma once
#include "app/cleanup_settings.h"
#include "app/finding.h"
#include "records/prompts.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace quillon {

// YesNoDefaultNo: a question whose Yes would destroy something, so that Enter keeps it.
// SaveDiscardCancel: Save answers Yes, Discard No.
enum class Buttons { Ok, YesNo, YesNoCancel, YesNoDefaultNo, SaveDiscardCancel };
enum class Icon { None, Information, Question, Warning, Critical };

// Flags of a file request, with the values of the classic common dialog.
enum FileFlags : unsigned {
    PromptOverwrite = 0x2,
    HideReadOnly = 0x4,
    FileMustExist = 0x1000,
};

struct FileRequest {
    std::string filter;  // "description|pattern|description|pattern..."
    int filterIndex = 1; // 1-based
    std::string initialFolder;
    std::string defaultExtension; // ".esp"; what a name typed without one gets under "All Files"
    unsigned flags = 0;
};

// The extension (".esm", lower case) that a name typed without one gets when the filter at index
// (1-based) is chosen: its first pattern's, or fallback for a pattern of every file.
std::string filterExtension(const std::string& filter, int index, const std::string& fallback);
// The 1-based index of the first filter whose patterns take extension (".ESP" or ".esp"); 0 when
// none does.
int filterIndexOf(const std::string& filter, const std::string& extension);

// What the loop-fixing dialog returns, with the edited texts.
enum class LoopFixStatus { Accept, Cancel, Skip };
struct LoopFix {
    LoopFixStatus status = LoopFixStatus::Skip;
    std::string text;
    std::string result;
};

// Every question, message, input box, file dialog and modal form a command needs. The window
// implements it with real dialogs, tests with scripted answers, the command line from its flags.
// An empty title means the application's own title.
class Dialogs {
public:
    virtual ~Dialogs() = default;
    // A message with one OK button.
    virtual void tell(const std::string& text, Icon icon) = 0;
    // A question with the given buttons; what names it for front ends that answer without asking.
    virtual Answer ask(const Question& what, const std::string& text, Buttons buttons, Icon icon,
                       const std::string& title) = 0;
    // The typed text; empty when cancelled.
    virtual std::string input(const Question& what, const std::string& prompt, const std::string& title,
                              const std::string& defaultText) = 0;
    // A chosen path; empty when cancelled.
    virtual std::string openFile(const FileRequest& request) = 0;
    virtual std::string saveFile(const FileRequest& request) = 0;
    // Edits one response within the game's length limit; returns the text to keep.
    virtual std::string editResponse(const std::string& actor, const std::string& topic,
                                     const std::string& text) = 0;
    virtual LoopFix fixLoop(const std::string& actor, const std::string& topic, const std::string& text,
                            const std::string& result, std::int32_t choice) = 0;
    virtual void editOptions(CleanupSettings& settings) = 0;
    // Output that would be damaged: write nothing (the default), repair it or write it as it is.
    virtual DamageChoice damagedOutput(const DamageReport& report) = 0;
    // Lists the findings of the dialogue check; edit(i) edits the response of finding i and
    // returns its text as it then stands.
    virtual void showFindings(const std::vector<Finding>& findings,
                              const std::function<std::string(std::size_t)>& edit) = 0;
    virtual void about() = 0;
    // Shows the log at once, before long work starts.
    virtual void refreshLog() = 0;
};

} // namespace quillon
