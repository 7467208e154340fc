#include "qt_text/code_page.h"

#include "app/encoding.h"

namespace quillon {

QString fromCodePage(const std::string& bytes) {
    return QString::fromStdString(toUtf8(bytes));
}

std::optional<std::string> toCodePage(const QString& text) {
    std::string bytes;
    char32_t missing = 0;
    if (!fromUtf8(text.toStdString(), bytes, missing)) return std::nullopt;
    return bytes;
}

QString cannotStoreMessage() {
    QString name = QString::fromLatin1(codePageName(activeCodePage()));
    if (!name.isEmpty()) name[0] = name[0].toUpper();
    return QStringLiteral("The text holds characters that the file's code page (%1) cannot store.").arg(name);
}

} // namespace quillon
