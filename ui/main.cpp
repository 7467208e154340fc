// quillon-gui [FILE]: the main window; a file given here is opened as Open would open it.
#include "ui/frm_main.h"

#include <QApplication>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Quillon"));
    quillon::Session session;
    quillon::FrmMain window(session);
    window.resize(900, 620);
    window.show();
    if (argc > 1) window.openPathNow(QString::fromLocal8Bit(argv[1]));
    return app.exec();
}
