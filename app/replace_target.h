#pragma once
#include "app/dialogs.h"
#include "app/session.h"
#include "writer/safe_file.h"

#include <optional>
#include <string>

namespace quillon {

// Whether a command may replace the file at path: a read-only one only when the user says so
// (the default keeps it). Empty when it is to be kept; otherwise what to tell the writer.
std::optional<ReadOnlyTarget> replaceableTarget(Session& session, Dialogs& dialogs, const std::string& path);

} // namespace quillon
