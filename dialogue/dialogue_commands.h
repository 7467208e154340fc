#pragma once
#include "app/outcome.h"
#include "app/session.h"

#include <string>
#include <vector>

namespace quillon {

// Export: every response to a text file of four quoted lines per response.
Outcome ExportDialogue(Session& session, Dialogs& dialogs);
// The text file's bytes: the code page's, as the game's tools expect, or UTF-8 for Linux editors.
enum class TextEncoding { CodePage, Utf8 };
Outcome exportDialogueTo(Session& session, Dialogs& dialogs, const std::string& path,
                         TextEncoding encoding = TextEncoding::CodePage);

// Import: reads an edited export back, response by response, checking each ID.
Outcome ImportDialogue(Session& session, Dialogs& dialogs);
Outcome importDialogueFrom(Session& session, Dialogs& dialogs, const std::string& path);
// The import of a text file's bytes, after the line-break question.
Outcome importDialogueText(Session& session, Dialogs& dialogs, std::string bytes, bool removeLineBreaks);

// Loop detection: responses shown after choice N whose own script offers choice N again.
Outcome DetectLoops(Session& session, Dialogs& dialogs);

// The lines of a result script, as written, that loop detection finds offering the choice.
std::vector<std::string> linesOfferingChoice(const std::string& script, std::int32_t choice);

// Quote exports of one city: an XML file, or a Kestrel quote file of 576-byte records.
Outcome ExportQuotesXml(Session& session, Dialogs& dialogs);
Outcome ExportQuotesKst(Session& session, Dialogs& dialogs);

// The log and message every dialogue command uses when the store holds no responses or a step fails.
Outcome reportExportError(Session& session, Dialogs& dialogs);

} // namespace quillon
