#pragma once
#include "app/cleanup_settings.h"

#include <QDialog>

class QCheckBox;
class QPushButton;

namespace quillon {

// Edits the ten clean-up settings; OK commits all of them, Cancel none.
class FrmOptions : public QDialog {
    Q_OBJECT
public:
    explicit FrmOptions(CleanupSettings& settings, QWidget* parent = nullptr);

private:
    void ok();
    void capClicked();

    CleanupSettings& settings_;
    QCheckBox *chkLines, *chkAmerican, *chkCap, *chkQuotes, *chkSlang, *chkTemple, *chkDash, *chkEllipsis,
        *chkSquare, *chkDashSpacing;
    QPushButton *cmdOptOk, *cmdOptCancel;
};

} // namespace quillon
