#pragma once
#include "app/dialogs.h"

#include <QDialog>

#include <cstdint>
#include <string>

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace quillon {

// Shows a response that can loop and lets the writer fix its text and result script, skip it,
// or stop the check.
class FrmInfo2 : public QDialog {
    Q_OBJECT
public:
    FrmInfo2(const std::string& actor, const std::string& topic, const std::string& text,
             const std::string& result, std::int32_t choice, QWidget* parent = nullptr);
    LoopFixStatus status() const { return status_; }
    const std::string& text() const { return text_; }
    const std::string& result() const { return result_; }

private:
    void acceptFix();
    void finish(LoopFixStatus status);

    LoopFixStatus status_ = LoopFixStatus::Cancel; // closing the window stops the check, as Cancel does
    std::string text_, result_;
    QPlainTextEdit *txtINFO, *txtResult;
    QLabel *lblChoice, *lblTopic, *lblActor;
    QPushButton *cmdAccept, *cmdCancel, *cmdSkip;
};

} // namespace quillon
