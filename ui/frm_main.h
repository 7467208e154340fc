#pragma once
#include "app/encoding.h"
#include "app/session.h"

#include <QMainWindow>

#include <array>
#include <functional>
#include <memory>
#include <vector>

class QAction;
class QCheckBox;
class QLabel;
class QPushButton;
class QRadioButton;

namespace quillon {

class SpellChecker;

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
    // Reads and shows the file's texts by the code page from now on.
    void chooseCodePage(CodePage page);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    // Exit, Alt+F4 and the title bar's close: unsaved changes are offered for saving first.
    void closeEvent(QCloseEvent* event) override;

private:
    void createMenus();
    void createFrames();
    void createCounts();
    void lookUpGameFolder();
    QWidget* centralArea();
    // Runs a command, then shows what it changed.
    void run(const std::function<void()>& command);
    bool handleShortcut(int key, int shiftState);
    // The button of the command whose menu entry is named entry.
    QWidget* buttonOf(const char* entry) const;

public:
    // The commands' handlers, named in the window's command table.
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
    void onCheck();
    void onTranslationTemplate();
    void onApplyTranslation();
    void onQuotesXml();
    void onQuotesKst();
    void onAbout();

private:
    // The session's spell checker (the dictionary chosen, or the code page's), opened on first
    // use, knowing the open file's names, the writer's own words and those ignored; null when the
    // dictionary is not installed.
    SpellChecker* spelling();
    // Checks spelling with that dictionary from now on (empty: the code page's), remembered.
    void chooseDictionary(const std::string& name);
    void createDictionaryMenu(QMenu* edit);

    Session& session_;
    std::unique_ptr<Dialogs> ownDialogs_;
    Dialogs* dialogs_;

    // Per command of the table, in its order: the menu entry, and the button or null.
    std::vector<QAction*> entries_;
    std::vector<QWidget*> buttons_;
    QRadioButton *optPure, *optHTML, *optPHP;
    QCheckBox* chkClones;
    std::unique_ptr<SpellChecker> spelling_;
    bool spellingTried_ = false;
    std::string spellingNamesOf_; // the file whose names the checker has taken
    std::string dictionary_;      // chosen in the menu; empty for the code page's
    QLabel* lblLog;
    QLabel* lblSaves;
    std::array<QLabel*, 57> lblRecName{}, lblCount{};
};

} // namespace quillon
