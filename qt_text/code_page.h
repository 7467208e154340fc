#pragma once
#include <QString>

#include <optional>
#include <string>

namespace quillon {

// The file's bytes as text, by the active code page.
QString fromCodePage(const std::string& bytes);
// The text as the active code page's bytes; nothing when a character has no byte in that page.
std::optional<std::string> toCodePage(const QString& text);
// The message for a text the active code page cannot store.
QString cannotStoreMessage();

} // namespace quillon
