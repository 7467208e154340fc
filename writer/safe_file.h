#pragma once
#include <string>

namespace quillon {

// Replaces the file at path with bytes: writes a temporary file in the same folder, flushes it to
// disk and renames it over the target. On failure the old file is untouched and the returned
// text says what went wrong; on success it is empty.
std::string replaceFileSafely(const std::string& path, const std::string& bytes);

} // namespace quillon
