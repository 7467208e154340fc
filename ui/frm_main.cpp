#include "ui/frm_main.h"

#include "app/file_commands.h"
#include "app/game_folder.h"
#include "cleanup/morrowindize.h"
#include "dialogue/dialogue_commands.h"
#include "npclist/npc_list.h"
#include "ui/code_page.h"
#include "ui/qt_dialogs.h"

#include <QApplication>
#include <QCheckBox>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLabel>
#include <QMenuBar>
#include <QMimeData>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <cstdlib>
#include <new>

#ifdef _WIN32
#include <windows.h>
#endif

namespace quillon {

namespace {

QPushButton* button(const char* name, const char* caption, const char* tip) {
    auto* b = new QPushButton(QString::fromLatin1(caption));
    b->setObjectName(name);
    b->setToolTip(QString::fromLatin1(tip));
    return b;
}

#ifdef _WIN32
// The game's install folder from its registry key, as the Windows game sets it.
std::string registryDataFolder() {
    HKEY key = nullptr;
    std::string folder;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Bethesda Softworks\\Morrowind", 0, 0x2003F, &key) == ERROR_SUCCESS) {
        char buffer[1024] = {};
        DWORD size = sizeof buffer;
        if (RegQueryValueExA(key, "Installed Path", nullptr, nullptr, reinterpret_cast<BYTE*>(buffer), &size) ==
            ERROR_SUCCESS)
            folder = std::string(buffer) + "\\Data Files";
    }
    if (key) RegCloseKey(key);
    return folder;
}
#endif

} // namespace

FrmMain::FrmMain(Session& session, Dialogs* dialogs) : session_(session), dialogs_(dialogs) {
    if (!dialogs_) {
        ownDialogs_ = std::make_unique<QtDialogs>(this, [this] {
            refresh();
            lblLog->repaint();
        });
        dialogs_ = ownDialogs_.get();
    }
    setWindowTitle(QStringLiteral("Quillon"));
    setObjectName("frmMain");
    setAcceptDrops(true);
    createMenus();
    createFrames();
    createCounts();
    setCentralWidget(centralArea());
    lookUpGameFolder();
    // The window sees every key before its controls do.
    qApp->installEventFilter(this);
    refresh();
}

FrmMain::~FrmMain() { qApp->removeEventFilter(this); }

void FrmMain::createMenus() {
    // The key shows as a hint beside the caption only: the window's own key table handles the
    // keys, so a registered shortcut would fire a command twice.
    auto entry = [this](QMenu* menu, const char* name, const char* caption, void (FrmMain::*slot)(),
                        const char* key = nullptr) {
        QString text = QString::fromLatin1(caption);
        if (key) text += '\t' + QKeySequence(QString::fromLatin1(key)).toString(QKeySequence::NativeText);
        QAction* a = menu->addAction(text);
        a->setObjectName(name);
        connect(a, &QAction::triggered, this, slot);
        return a;
    };
    QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
    file->setObjectName("mnuFile");
    mnuOpen = entry(file, "mnuOpen", "&Open", &FrmMain::onOpen, "Ctrl+O");
    mnuSave = entry(file, "mnuSave", "&Save", &FrmMain::onSave, "Ctrl+S");
    mnuSaveAs = entry(file, "mnuSaveAs", "&Save as", &FrmMain::onSaveAs, "Ctrl+Shift+S");
    mnuClose = entry(file, "mnuClose", "&Close", &FrmMain::onClose, "Ctrl+C");
    file->addSeparator()->setObjectName("mnuJunk1");
    mnuExit = entry(file, "mnuExit", "E&xit", &FrmMain::onExit, "Ctrl+X");

    QMenu* edit = menuBar()->addMenu(QStringLiteral("&Edit"));
    edit->setObjectName("mnuEdit");
    // The Edit entries run the handlers of their twin buttons.
    mnuExport = entry(edit, "mnuExport", "&Export Dialogue", &FrmMain::onExport, "Ctrl+E");
    mnuImport = entry(edit, "mnuImport", "&Import Dialogue", &FrmMain::onImport, "Ctrl+I");
    mnuList = entry(edit, "mnuList", "Export NPC &List", &FrmMain::onList, "Ctrl+L");
    mnuLoops = entry(edit, "mnuLoops", "&Detect Loops", &FrmMain::onLoops);
    edit->addSeparator()->setObjectName("mnuJunk2");
    mnuClean = entry(edit, "mnuClean", "&Morrowindize Dialogue", &FrmMain::onSpellCheck, "Ctrl+M");
    mnuOptions = entry(edit, "mnuOptions", "Morrowindization O&ptions", &FrmMain::onOptions, "Ctrl+P");
    edit->addSeparator();
    mnuQuotesXml = entry(edit, "mnuQuotesXml", "Export &Quotes as XML", &FrmMain::onQuotesXml);
    mnuQuotesKst = entry(edit, "mnuQuotesKst", "Export Quotes as &Kestrel File", &FrmMain::onQuotesKst);

    QMenu* help = menuBar()->addMenu(QStringLiteral("&Help"));
    help->setObjectName("mnuHelp");
    mnuAbout = entry(help, "mnuAbout", "&About", &FrmMain::onAbout, "Ctrl+A");
}

void FrmMain::createFrames() {
    cmdExport = button("cmdExport", "Ex&port ", "Export all dialogue responses to a text-file for easy editing.");
    cmdImport = button("cmdImport", "&Import ", "Import dialogue from previously-exported text file.");
    cmdLoops = button("cmdLoops", "&Detect Loops ",
                      "Checks the dialogue of the currently loaded file for looping problems.");
    cmdSpellCheck = button("cmdSpellCheck", "&Morrowindize ",
                           "Fix dialogue for common Morrowind misspellings, capitalization, and invalid characters.");
    cmdOptions = button("cmdOptions", "O&ptions ", "Gives access to Morrowindization options.");
    cmdList = button("cmdList", "Export Character &List",
                     "This will export a list of NPCs and their details from a chosen cell.");
    auto radio = [](const char* name, const char* caption, const char* tip) {
        auto* r = new QRadioButton(QString::fromLatin1(caption));
        r->setObjectName(name);
        r->setToolTip(QString::fromLatin1(tip));
        return r;
    };
    optPure = radio("optPure", "Pure Text", "This will export the NPC list in a simple text format.");
    optHTML = radio("optHTML", "HTML", "This will export the NPC List with HTML encoding.");
    optPHP = radio("optPHP", "phpBB", "This will export the NPC list with phpBB encoding, ready to be posted on a forum.");
    optPure->setChecked(true);
    chkClones = new QCheckBox(QStringLiteral("Export Clones"));
    chkClones->setObjectName("chkClones");
    // "exporitng" is the tool tip's own spelling.
    chkClones->setToolTip(QStringLiteral(
        "Checking this will allow exporitng of Clone NPCs, such as guards, \"cattle\", and the like."));

    connect(cmdExport, &QPushButton::clicked, this, &FrmMain::onExport);
    connect(cmdImport, &QPushButton::clicked, this, &FrmMain::onImport);
    connect(cmdLoops, &QPushButton::clicked, this, &FrmMain::onLoops);
    connect(cmdSpellCheck, &QPushButton::clicked, this, &FrmMain::onSpellCheck);
    connect(cmdOptions, &QPushButton::clicked, this, &FrmMain::onOptions);
    connect(cmdList, &QPushButton::clicked, this, &FrmMain::onList);
}

void FrmMain::createCounts() {
    for (std::size_t i = 0; i < kCountLabels; ++i) {
        lblRecName[i] = new QLabel(QString::fromLatin1(countCaption(i)));
        lblRecName[i]->setObjectName(QStringLiteral("lblRecName%1").arg(i));
        lblCount[i] = new QLabel(QStringLiteral("0"));
        lblCount[i]->setObjectName(QStringLiteral("lblCount%1").arg(i));
        lblCount[i]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        lblCount[i]->setMinimumWidth(48);
    }
    lblSaves = new QLabel(QStringLiteral("Savegames Specific"));
    lblSaves->setObjectName("lblSaves");
    lblLog = new QLabel;
    lblLog->setObjectName("lblLog");
    lblLog->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    lblLog->setMinimumHeight(lblLog->fontMetrics().lineSpacing() * 6 + 8);
    lblLog->setFrameShape(QFrame::StyledPanel);
    lblLog->setTextFormat(Qt::PlainText);
}

QWidget* FrmMain::centralArea() {
    auto frame = [](const char* name, const char* caption, std::initializer_list<QWidget*> widgets) {
        auto* box = new QGroupBox(QString::fromLatin1(caption));
        box->setObjectName(name);
        auto* layout = new QVBoxLayout(box);
        for (QWidget* w : widgets) layout->addWidget(w);
        return box;
    };
    auto* left = new QVBoxLayout;
    left->addWidget(frame("frmDummy1", "Dialogue", {cmdExport, cmdImport, cmdLoops}));
    left->addWidget(frame("Frame1", "Morrowindization", {cmdSpellCheck, cmdOptions}));
    left->addWidget(frame("frmDummy2", "Other", {cmdList, optPure, optHTML, optPHP, chkClones}));
    left->addStretch();

    // The counts of plugin types in four columns, then the savegame types under their heading.
    auto* counts = new QGridLayout;
    int row = 0, column = 0;
    auto place = [&](std::size_t i) {
        counts->addWidget(lblRecName[i], row, column * 2);
        counts->addWidget(lblCount[i], row, column * 2 + 1);
        if (++column == 4) column = 0, ++row;
    };
    for (std::size_t i = 0; i < kCountLabels; ++i)
        if (!isSavegameLabel(i) && i != CountLabel::Total && i != CountLabel::Unknown) place(i);
    place(CountLabel::Unknown);
    place(CountLabel::Total);
    row += 1, column = 0;
    counts->addWidget(lblSaves, row++, 0, 1, 8);
    for (std::size_t i = 0; i < kCountLabels; ++i)
        if (isSavegameLabel(i)) place(i);
    auto* countBox = new QGroupBox(QStringLiteral("Records"));
    countBox->setLayout(counts);

    auto* top = new QHBoxLayout;
    top->addLayout(left);
    top->addWidget(countBox, 1);
    auto* whole = new QVBoxLayout;
    whole->addLayout(top);
    whole->addWidget(lblLog);
    auto* area = new QWidget;
    area->setLayout(whole);
    return area;
}

void FrmMain::lookUpGameFolder() {
#ifdef _WIN32
    std::string folder = registryDataFolder();
#else
    std::string folder = findDataFolder({[](const char* name) {
                                             const char* v = std::getenv(name);
                                             return std::string(v ? v : "");
                                         },
                                         std::getenv("HOME") ? std::getenv("HOME") : ""});
#endif
    if (!folder.empty()) {
        session_.openFolder = folder;
        return;
    }
    session_.openFolder = QCoreApplication::applicationDirPath().toStdString();
    session_.log.setCaption(std::string(kGameNotFoundWarning) + "\r\n");
}

std::vector<QObject*> FrmMain::fileGroup() const {
    return {cmdExport, cmdImport, cmdList, cmdSpellCheck, mnuClose, mnuSave, mnuSaveAs, mnuList, mnuExport,
            mnuImport, mnuClean, mnuOptions, cmdOptions, cmdLoops, mnuLoops, mnuQuotesXml, mnuQuotesKst};
}

void FrmMain::refresh() {
    QString log = fromCodePage(session_.log.caption());
    log.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    if (log.endsWith('\n')) log.chop(1);
    lblLog->setText(log);
    for (std::size_t i = 0; i < kCountLabels; ++i) lblCount[i]->setText(QString::fromStdString(session_.counts.shown[i]));
    for (QObject* control : fileGroup()) {
        if (auto* w = qobject_cast<QWidget*>(control)) w->setEnabled(session_.fileGroupEnabled);
        if (auto* a = qobject_cast<QAction*>(control)) a->setEnabled(session_.fileGroupEnabled);
    }
}

void FrmMain::run(const std::function<void()>& command) {
    try {
        command();
    } catch (const std::bad_alloc&) {
        // The window and whatever the session still holds stay; only the command ends.
        dialogs_->tell("Not enough memory to finish the command. The work open here is kept; save it under a "
                       "new name if it was changed.",
                       Icon::Critical);
    }
    refresh();
}

void FrmMain::openPathNow(const QString& path) {
    run([&] {
        std::string p = path.toStdString();
        session_.openFolder = folderOf(p);
        openPath(session_, *dialogs_, p);
    });
}

bool FrmMain::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && QApplication::activeModalWidget() == nullptr) {
        auto* widget = qobject_cast<QWidget*>(watched);
        if (widget && widget->window() == this) {
            auto* key = static_cast<QKeyEvent*>(event);
            Qt::KeyboardModifiers m = key->modifiers();
            int shiftState = (m & Qt::ShiftModifier ? 1 : 0) | (m & Qt::ControlModifier ? 2 : 0) |
                             (m & Qt::AltModifier ? 4 : 0);
            if (handleShortcut(key->key(), shiftState)) return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

bool FrmMain::handleShortcut(int key, int shiftState) {
    if (!(shiftState & 2)) return false;
    // There is deliberately no key for loop detection.
    switch (key) {
    case Qt::Key_X: if (mnuExit->isEnabled()) onExit(); return true;
    case Qt::Key_C: if (mnuClose->isEnabled()) onClose(); return true;
    case Qt::Key_O: if (mnuOpen->isEnabled()) onOpen(); return true;
    case Qt::Key_E: if (cmdExport->isEnabled()) onExport(); return true;
    case Qt::Key_I: if (cmdImport->isEnabled()) onImport(); return true;
    case Qt::Key_M: if (cmdSpellCheck->isEnabled()) onSpellCheck(); return true;
    case Qt::Key_L: if (cmdList->isEnabled()) onList(); return true;
    case Qt::Key_P: onOptions(); return true; // no check of the enabled state, as the table says
    case Qt::Key_S:
        if (mnuSaveAs->isEnabled()) {
            if (shiftState == 3 || shiftState == 7)
                onSaveAs();
            else
                onSave();
        }
        return true;
    case Qt::Key_A: onAbout(); return true;
    default: return false;
    }
}

void FrmMain::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void FrmMain::dropEvent(QDropEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    if (!urls.isEmpty() && urls.front().isLocalFile()) openPathNow(urls.front().toLocalFile());
}

void FrmMain::onOpen() { run([&] { Open(session_, *dialogs_); }); }
void FrmMain::onClose() { run([&] { Close(session_); }); }
void FrmMain::onExit() {
    Exit(session_);
    close();
    QApplication::quit();
}
void FrmMain::onSave() { run([&] { Save(session_, *dialogs_); }); }
void FrmMain::onSaveAs() { run([&] { SaveAs(session_, *dialogs_); }); }
void FrmMain::onExport() { run([&] { ExportDialogue(session_, *dialogs_); }); }
void FrmMain::onImport() { run([&] { ImportDialogue(session_, *dialogs_); }); }
void FrmMain::onLoops() { run([&] { DetectLoops(session_, *dialogs_); }); }
void FrmMain::onSpellCheck() { run([&] { Morrowindize(session_, *dialogs_); }); }
void FrmMain::onOptions() { run([&] { dialogs_->editOptions(session_.settings); }); }
void FrmMain::onList() {
    NpcListFormat format = optHTML->isChecked()  ? NpcListFormat::Html
                           : optPHP->isChecked() ? NpcListFormat::PhpBB
                                                 : NpcListFormat::PlainText;
    // A checked "Export Clones" box leaves the clones out: the list's own rule, kept as it is.
    run([&] { ExportNpcList(session_, *dialogs_, format, chkClones->isChecked()); });
}
void FrmMain::onQuotesXml() { run([&] { ExportQuotesXml(session_, *dialogs_); }); }
void FrmMain::onQuotesKst() { run([&] { ExportQuotesKst(session_, *dialogs_); }); }
void FrmMain::onAbout() { dialogs_->about(); }

} // namespace quillon
