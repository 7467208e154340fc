// quillon-gui [FILE]: the main window; a file given here is opened as Open would open it.
#include "ui/frm_main.h"
#include "writer/safe_file.h"

#include <QApplication>

#include <csignal>
#include <cstdio>
#include <cstring>

int main(int argc, char** argv) {
    // Answered before any window exists, so that they work without a display.
    if (argc > 1 && std::strcmp(argv[1], "--version") == 0) {
        std::printf("quillon-gui %s\n", QUILLON_VERSION);
        return 0;
    }
    if (argc > 1 && std::strcmp(argv[1], "--help") == 0) {
        std::printf(
            "usage: quillon-gui [FILE]\n\nThe Quillon window; a data file given here is opened at once.\n"
            "The command-line twin is quillon (see quillon --help).\n");
        return 0;
    }
    std::signal(SIGXFSZ, SIG_IGN); // a write past a file-size limit fails and is reported
    quillon::removeTemporaryOnSignals();
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Quillon"));
    quillon::Session session;
    quillon::FrmMain window(session);
    window.resize(900, 620);
    window.show();
    if (argc > 1) window.openPathNow(QString::fromLocal8Bit(argv[1]));
    return app.exec();
}
