#pragma once
#include "app/outcome.h"
#include "app/session.h"
#include <string>
#include <vector>

namespace quillon {

// "Morrowindize": cleans every response of the open file with the session's settings. Texts that
// grow past the game's limit are offered for editing by hand, or keep their original text.
Outcome Morrowindize(Session& session, Dialogs& dialogs);
// The same without a question: every text that would grow past the limit keeps its original,
// and kept gets one line naming each such response (the command line's clean-up).
Outcome morrowindizeKeepingLongTexts(Session& session, Dialogs& dialogs, std::vector<std::string>& kept);

} // namespace quillon
