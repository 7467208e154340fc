#pragma once
#include "app/outcome.h"
#include "app/session.h"
#include "writer/safe_file.h"

#include <optional>
#include <string>
#include <vector>

namespace quillon {

// Export: every response to a text file of four quoted lines per response.
Outcome ExportDialogue(Session& session, Dialogs& dialogs);
// The text file's bytes: the code page's, as the game's tools expect, or UTF-8 for Linux editors.
enum class TextEncoding { CodePage, Utf8 };
Outcome exportDialogueTo(Session& session, Dialogs& dialogs, const std::string& path,
                         TextEncoding encoding = TextEncoding::CodePage);

// What an import is told before it runs (the command line's flags) instead of asking as it goes
// (the window); what is left unset is asked through the dialogs.
struct ImportAnswers {
    std::optional<bool> removeLineBreaks;
    // A response over the game's limit: ask whether to edit it by hand, trim it, or refuse the
    // whole import naming every such response.
    enum class LongTexts { Ask, Trim, Refuse } longTexts = LongTexts::Ask;
};

// Import: reads an edited export back, response by response, checking each ID. All or nothing:
// the responses change only once the whole text matched and every question was answered.
Outcome ImportDialogue(Session& session, Dialogs& dialogs);
Outcome importDialogueFrom(Session& session, Dialogs& dialogs, const std::string& path,
                           const ImportAnswers& answers = {});
// The import of a text file's bytes, after the line-break question.
Outcome importDialogueText(Session& session, Dialogs& dialogs, std::string bytes, bool removeLineBreaks,
                           ImportAnswers::LongTexts longTexts = ImportAnswers::LongTexts::Ask);

// Loop detection: responses shown after choice N whose own script offers choice N again.
Outcome DetectLoops(Session& session, Dialogs& dialogs);

// The lines of a result script, as written, that loop detection finds offering the choice.
std::vector<std::string> linesOfferingChoice(const std::string& script, std::int32_t choice);

// Quote exports of one city: an XML file, or a Kestrel quote file of 576-byte records. They ask for
// the file and the city, then write as below.
Outcome ExportQuotesXml(Session& session, Dialogs& dialogs);
Outcome ExportQuotesKst(Session& session, Dialogs& dialogs);
// What a quote export is given: its file (and whether it may replace a read-only one), its city,
// and whether the Kestrel file's speaker names holding "_" are offered for retyping.
struct QuoteExport {
    std::string path;
    ReadOnlyTarget readOnly = ReadOnlyTarget::Refuse;
    std::string city;
    bool retypeNames = true;
};
Outcome writeQuotesXml(Session& session, Dialogs& dialogs, const QuoteExport& request);
Outcome writeQuotesKst(Session& session, Dialogs& dialogs, const QuoteExport& request);

// The log and message every dialogue command uses when the store holds no responses or a step fails.
Outcome reportExportError(Session& session, Dialogs& dialogs);

} // namespace quillon
