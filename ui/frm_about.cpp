#include "ui/frm_about.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

namespace quillon {

FrmAbout::FrmAbout(QWidget* parent) : QDialog(parent) {
    setWindowTitle(QStringLiteral("About Quillon"));
    auto* title = new QLabel(QStringLiteral("<h2>Quillon</h2>"));
    auto* version = new QLabel(QStringLiteral("Version " QUILLON_VERSION));
    version->setObjectName("lblVersion");
    auto* description =
        new QLabel(QStringLiteral("Dialogue tools for the data files of The Elder Scrolls III: Morrowind."));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(title);
    layout->addWidget(version);
    layout->addWidget(description);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
}

} // namespace quillon
