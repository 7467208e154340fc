#pragma once
// Response texts between the file (CR LF breaks, Windows-1252 bytes) and a text box.
#include <QString>

#include <optional>
#include <string>

class QWidget;

namespace quillon {

QString toEditor(const std::string& bytes);
// The edited text as the file's bytes; shows a message and gives nothing when a character has
// no byte in the code page.
std::optional<std::string> fromEditor(QWidget* parent, const QString& text);
// The length the game counts: every line break is two characters in the file.
int fileLength(const QString& editorText);

} // namespace quillon
