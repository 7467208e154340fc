#pragma once
// The translation commands of the window: the PO template of the open file, and a PO applied to
// it (saved afterwards as usual).
#include "app/outcome.h"
#include "app/session.h"
#include "translation/translation.h"

#include <optional>
#include <string>
#include <vector>

namespace quillon {

// Asks for a .pot file and writes the template of the open file's texts to it.
Outcome ExportTranslationTemplate(Session& session, Dialogs& dialogs);
// Writes a template of entries (made from sourceName and perhaps others) to path and logs it.
Outcome writeTemplate(Session& session, Dialogs& dialogs, const std::vector<PoEntry>& entries,
                      const std::string& sourceName, const std::string& path);

// Asks for a PO file, applies it to the open file and tells what was applied, stale and refused.
Outcome ApplyTranslation(Session& session, Dialogs& dialogs);
// The PO file at path; empty, with a message, when it cannot be read or is not a PO file.
std::optional<std::vector<PoEntry>> readPoFile(Dialogs& dialogs, const std::string& path);
// Applies a PO to the open file and logs it; nothing is applied, with a message, when a
// translation holds a character the code page lacks. The report says the rest.
Outcome applyPo(Session& session, Dialogs& dialogs, const std::vector<PoEntry>& po, const std::string& poName,
                TranslationReport& report);

} // namespace quillon
