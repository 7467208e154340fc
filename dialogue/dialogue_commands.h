#pragma once
#include "app/session.h"

#include <string>
#include <vector>

namespace quillon {

// Export: every response to a text file of four quoted lines per response.
void ExportDialogue(Session& session, Dialogs& dialogs);
void exportDialogueTo(Session& session, Dialogs& dialogs, const std::string& path);

// Import: reads an edited export back, response by response, checking each ID.
void ImportDialogue(Session& session, Dialogs& dialogs);
void importDialogueFrom(Session& session, Dialogs& dialogs, const std::string& path);
// The import of a text file's bytes, after the line-break question.
void importDialogueText(Session& session, Dialogs& dialogs, std::string bytes, bool removeLineBreaks);

// Loop detection: responses shown after choice N whose own script offers choice N again.
void DetectLoops(Session& session, Dialogs& dialogs);

// The lines of a result script, prepared as loop detection reads them, that offer the choice.
std::vector<std::string> linesOfferingChoice(const std::string& script, std::int32_t choice);

// Quote exports of one city: an XML file, or a Kestrel quote file of 576-byte records.
void ExportQuotesXml(Session& session, Dialogs& dialogs);
void ExportQuotesKst(Session& session, Dialogs& dialogs);

// The log and message every dialogue command uses when the store holds no responses or a step fails.
void reportExportError(Session& session, Dialogs& dialogs);

} // namespace quillon
