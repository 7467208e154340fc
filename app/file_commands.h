#pragma once
#include "app/session.h"

#include <string>

namespace quillon {

// The filters of the data-file dialogs, as the window's dialogs expect them.
extern const char* const kOpenDataFilter;
extern const char* const kSaveDataFilter;

// Open: asks for a data file, then reads it as openPath does.
void Open(Session& session, Dialogs& dialogs);
// Reads the file at path into the session, logs the outcome and shows the counts. Returns the
// reader's result: milliseconds, -1 when the file was refused or unreadable, 0 when stopped.
double openPath(Session& session, Dialogs& dialogs, const std::string& path);
// Empties the store without saving or asking.
void Close(Session& session);
// Empties the store before the program ends.
void Exit(Session& session);
// Writes the store over the current file. True when the file was written or the user declined.
bool Save(Session& session, Dialogs& dialogs);
// Asks for a file and writes the store to it; it becomes the current file.
bool SaveAs(Session& session, Dialogs& dialogs);
// Save As to a path already chosen (the command line's -o).
bool saveAsPath(Session& session, Dialogs& dialogs, const std::string& path);

} // namespace quillon
