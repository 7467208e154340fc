#pragma once
// Spelling as the writer types: unknown words underlined in an editor, the dictionary's
// suggestions and "Ignore" on right-click. Ignored words last as long as the checker does.
#include <QSyntaxHighlighter>

class QPlainTextEdit;

namespace quillon {

class SpellChecker;

class SpellingHighlighter : public QSyntaxHighlighter {
    Q_OBJECT
public:
    // Underlines edit's unknown words and offers corrections in its context menu.
    SpellingHighlighter(QPlainTextEdit* edit, SpellChecker& checker);

protected:
    void highlightBlock(const QString& text) override;

private:
    void showMenu(const QPoint& at);

    QPlainTextEdit* edit_;
    SpellChecker& checker_;
};

} // namespace quillon
