#pragma once
#include <QDialog>

#include <string>

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace quillon {

class SpellChecker;

// Edits one response text within the game's 512-character limit.
class FrmInfo : public QDialog {
    Q_OBJECT
public:
    // With a spell checker, unknown words are underlined as the writer types.
    FrmInfo(const std::string& actor, const std::string& topic, const std::string& text,
            QWidget* parent = nullptr, SpellChecker* spelling = nullptr);
    // The accepted text, or the text given when the dialog was cancelled.
    const std::string& text() const { return text_; }

private:
    void showLength();
    void accept() override;

    std::string text_;
    QPlainTextEdit* txtINFO;
    QLabel *lblTopic, *lblActor, *lblLength;
    QPushButton *cmdAccept, *cmdCancel;
};

} // namespace quillon
