#pragma once
#include <QDialog>

namespace quillon {

// The program's title, version and what it is for; closed by OK.
class FrmAbout : public QDialog {
    Q_OBJECT
public:
    explicit FrmAbout(QWidget* parent = nullptr);
};

} // namespace quillon
