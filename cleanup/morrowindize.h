#pragma once
#include "app/outcome.h"
#include "app/session.h"

namespace quillon {

// "Morrowindize": cleans every response of the open file with the session's settings. Texts that
// grow past the game's limit are offered for editing by hand, or keep their original text.
Outcome Morrowindize(Session& session, Dialogs& dialogs);

} // namespace quillon
