#pragma once
#include "app/outcome.h"
#include "app/session.h"

#include <string>

namespace quillon {

// The filters of the data-file dialogs, as the window's dialogs expect them.
extern const char* const kOpenDataFilter;
extern const char* const kSaveDataFilter;

// Open: asks for a data file, then reads it as openPath does.
Outcome Open(Session& session, Dialogs& dialogs);
// Reads the file at path into the session, logs the outcome and shows the counts. Declined when
// the user stopped the read at a record of unknown type.
Outcome openPath(Session& session, Dialogs& dialogs, const std::string& path);
// Before the open records are dropped (Close, Exit, Open of another file): while they hold
// unsaved changes and the session asks, "Save changes to X?" with Save, Discard and Cancel, Save
// saving first. False when the records are to stay (Cancel, or a save that did not happen).
bool mayDropRecords(Session& session, Dialogs& dialogs);
// Empties the store without saving or asking.
Outcome Close(Session& session);
// Empties the store before the program ends.
void Exit(Session& session);
// Writes the store over the current file. Declined when the user keeps a file that is not the
// records' own, or answers No to writing a savegame.
Outcome Save(Session& session, Dialogs& dialogs);
// Asks for a file and writes the store to it; it becomes the current file.
Outcome SaveAs(Session& session, Dialogs& dialogs);
// Save As to a path already chosen (the command line's -o).
Outcome saveAsPath(Session& session, Dialogs& dialogs, const std::string& path);

} // namespace quillon
