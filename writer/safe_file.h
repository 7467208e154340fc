#pragma once
#include <string>

namespace quillon {

// Replaces the file at path with bytes: writes a temporary file in the same folder, flushes it to
// disk and renames it over the target. On failure the old file is untouched and the returned
// text says what went wrong, and systemError (when given) the system's error number, or 0 when
// the target is refused for not being an ordinary file; on success the text is empty.
std::string replaceFileSafely(const std::string& path, const std::string& bytes, int* systemError = nullptr);

} // namespace quillon
