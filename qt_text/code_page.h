#pragma once
#include <QString>

#include <optional>
#include <string>

namespace quillon {

// The file's bytes as text, by Windows-1252.
QString fromCodePage(const std::string& bytes);
// The text as Windows-1252 bytes; nothing when a character has no byte in that code page.
std::optional<std::string> toCodePage(const QString& text);

} // namespace quillon
