#pragma once
// The translation commands of the window: the PO template of the open file, and a PO applied to
// it (saved afterwards as usual).
#include "app/outcome.h"
#include "app/session.h"

namespace quillon {

// Asks for a .pot file and writes the template of the open file's texts to it.
Outcome ExportTranslationTemplate(Session& session, Dialogs& dialogs);
// Asks for a PO file, applies it to the open file and tells what was applied, stale and refused.
Outcome ApplyTranslation(Session& session, Dialogs& dialogs);

} // namespace quillon
