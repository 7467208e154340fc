#pragma once
#include "app/session.h"

#include <QMainWindow>

#include <array>
#include <functional>
#include <memory>

class QAction;
class QCheckBox;
class QLabel;
class QPushButton;
class QRadioButton;

namespace quillon {

// The main window: the session's log and record counts, and a button, menu entry or shortcut
// for every command. The commands themselves are plain functions over the session.
class FrmMain : public QMainWindow {
    Q_OBJECT
public:
    // dialogs: how questions are put; the window's own Qt dialogs when none is given.
    explicit FrmMain(Session& session, Dialogs* dialogs = nullptr);
    ~FrmMain() override;

    // Opens a file named on the command line or dropped on the window, as Open would.
    void openPathNow(const QString& path);
    // Shows the session's log, counts and enabled state.
    void refresh();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void createMenus();
    void createFrames();
    void createCounts();
    void lookUpGameFolder();
    QWidget* centralArea();
    // Runs a command, then shows what it changed.
    void run(const std::function<void()>& command);
    bool handleShortcut(int key, int shiftState);
    std::vector<QObject*> fileGroup() const;

    void onOpen();
    void onClose();
    void onExit();
    void onSave();
    void onSaveAs();
    void onExport();
    void onImport();
    void onLoops();
    void onSpellCheck();
    void onOptions();
    void onList();
    void onQuotesXml();
    void onQuotesKst();
    void onAbout();

    Session& session_;
    std::unique_ptr<Dialogs> ownDialogs_;
    Dialogs* dialogs_;

    QPushButton *cmdExport, *cmdImport, *cmdLoops, *cmdSpellCheck, *cmdOptions, *cmdList;
    QRadioButton *optPure, *optHTML, *optPHP;
    QCheckBox* chkClones;
    QLabel* lblLog;
    QLabel* lblSaves;
    std::array<QLabel*, 57> lblRecName{}, lblCount{};
    QAction *mnuOpen, *mnuSave, *mnuSaveAs, *mnuClose, *mnuExit;
    QAction *mnuExport, *mnuImport, *mnuList, *mnuLoops, *mnuClean, *mnuOptions, *mnuQuotesXml, *mnuQuotesKst;
    QAction* mnuAbout;
};

} // namespace quillon
