#include "workbench/frm_spelling.h"

#include "qt_text/code_page.h"
#include "workbench/personal_words.h"
#include "workbench/spelling.h"

#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QTextCursor>

namespace quillon {

namespace {

// The unknown words of a line: where each starts and how long it is, in characters. A character
// the code page cannot hold makes no word known, so the line is checked by page only.
std::vector<std::pair<int, int>> unknownWords(SpellChecker& checker, const QString& line) {
    std::vector<std::pair<int, int>> out;
    std::optional<std::string> bytes = toCodePage(line);
    if (!bytes) return out;
    for (const WordAt& w : wordsToCheck(*bytes))
        if (!spelledRight(checker, w.word)) out.emplace_back(int(w.at), int(w.word.size()));
    return out;
}

} // namespace

SpellingHighlighter::SpellingHighlighter(QPlainTextEdit* edit, SpellChecker& checker)
    : QSyntaxHighlighter(edit->document()), edit_(edit), checker_(checker) {
    edit->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(edit, &QPlainTextEdit::customContextMenuRequested, this, &SpellingHighlighter::showMenu);
}

void SpellingHighlighter::highlightBlock(const QString& text) {
    QTextCharFormat wrong;
    wrong.setUnderlineStyle(QTextCharFormat::SpellCheckUnderline);
    wrong.setUnderlineColor(Qt::red);
    for (auto [at, length] : unknownWords(checker_, text))
        setFormat(at, length, wrong);
}

void SpellingHighlighter::showMenu(const QPoint& at) {
    std::unique_ptr<QMenu> menu(edit_->createStandardContextMenu(at));
    QTextCursor cursor = edit_->cursorForPosition(at);
    int column = cursor.positionInBlock();
    for (auto [start, length] : unknownWords(checker_, cursor.block().text())) {
        if (column < start || column > start + length) continue;
        QTextCursor word = cursor;
        word.setPosition(cursor.block().position() + start);
        word.setPosition(cursor.block().position() + start + length, QTextCursor::KeepAnchor);
        std::string bytes = toCodePage(word.selectedText()).value_or(std::string());
        QAction* first = menu->actions().isEmpty() ? nullptr : menu->actions().first();
        for (const std::string& suggestion : checker_.suggestions(bytes)) {
            QAction* replace = new QAction(fromCodePage(suggestion), menu.get());
            connect(replace, &QAction::triggered, this,
                    [word, suggestion]() mutable { word.insertText(fromCodePage(suggestion)); });
            menu->insertAction(first, replace);
        }
        QAction* ignore = new QAction(QStringLiteral("Ignore"), menu.get());
        ignore->setObjectName("mnuIgnoreWord");
        connect(ignore, &QAction::triggered, this, [this, bytes] {
            checker_.accept(bytes);
            rehighlight();
        });
        menu->insertAction(first, ignore);
        QAction* keep = new QAction(QStringLiteral("Add to My &Words"), menu.get());
        keep->setObjectName("mnuAddWord");
        connect(keep, &QAction::triggered, this, [this, bytes] {
            if (std::string error = addPersonalWord(bytes); !error.empty()) {
                QMessageBox::warning(edit_, QStringLiteral("Quillon"), fromCodePage(error + "."));
                return;
            }
            checker_.accept(bytes);
            rehighlight();
        });
        menu->insertAction(first, keep);
        menu->insertSeparator(first);
        break;
    }
    menu->exec(edit_->mapToGlobal(at));
}

} // namespace quillon
