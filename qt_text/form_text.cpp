#include "qt_text/form_text.h"

#include "qt_text/code_page.h"

#include <QMessageBox>

namespace quillon {

QString toEditor(const std::string& bytes) {
    QString text = fromCodePage(bytes);
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return text;
}

std::optional<std::string> fromEditor(QWidget* parent, const QString& text) {
    QString withBreaks = text;
    withBreaks.replace(QStringLiteral("\n"), QStringLiteral("\r\n"));
    std::optional<std::string> bytes = toCodePage(withBreaks);
    if (!bytes)
        QMessageBox::warning(parent, QStringLiteral("Quillon"),
                             cannotStoreMessage() + QStringLiteral(" Replace them and try again."));
    return bytes;
}

int fileLength(const QString& editorText) {
    return int(editorText.size() + editorText.count(QChar('\n')));
}

} // namespace quillon
