#pragma once
// Spelling as the writer types: unknown words underlined in an editor, the dictionary's
// suggestions, "Ignore" and "Add to My Words" on right-click. Ignored words last as long as the
// checker does; added ones go to the writer's own word list for good.
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
