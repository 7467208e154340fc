#include "ui/frm_main.h"

#include "app/encoding.h"
#include "app/file_commands.h"
#include "app/game_folder.h"
#include "cleanup/morrowindize.h"
#include "dialogue/dialogue_commands.h"
#include "npclist/npc_list.h"
#include "qt_text/code_page.h"
#include "translation/translation_commands.h"
#include "ui/qt_dialogs.h"
#include "workbench/check.h"
#include "workbench/personal_words.h"
#include "workbench/spelling.h"

#include <QActionGroup>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
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
#include <QSettings>
#include <QVBoxLayout>

#include <cstring>
#include <iterator>
#include <new>

namespace quillon {

namespace {

enum class Menu { File, Edit, Help };

// One command of the window: its menu entry, its button, its key (with Ctrl) and its handler.
struct WindowCommand {
    const char* entry; // the menu entry's object name
    Menu menu;
    const char* caption;
    void (FrmMain::*handler)();
    char key = 0;       // none when 0
    bool shift = false; // Ctrl+Shift rather than Ctrl
    // The key runs the command only while its entry is enabled (Ctrl+P and Ctrl+A run always).
    bool keyChecksEnabled = true;
    bool needsFile = false; // in the group enabled only while a file is open
    bool separatorBefore = false;
    const char* button = nullptr; // the twin button's object name, caption and tool tip
    const char* buttonCaption = nullptr;
    const char* buttonTip = nullptr;
};

// In menu order. There is deliberately no key for loop detection.
const WindowCommand kCommands[] = {
    {.entry = "mnuOpen", .menu = Menu::File, .caption = "&Open", .handler = &FrmMain::onOpen, .key = 'O'},
    {.entry = "mnuSave",
     .menu = Menu::File,
     .caption = "&Save",
     .handler = &FrmMain::onSave,
     .key = 'S',
     .needsFile = true},
    {.entry = "mnuSaveAs",
     .menu = Menu::File,
     .caption = "&Save as",
     .handler = &FrmMain::onSaveAs,
     .key = 'S',
     .shift = true,
     .needsFile = true},
    {.entry = "mnuClose",
     .menu = Menu::File,
     .caption = "&Close",
     .handler = &FrmMain::onClose,
     .key = 'C',
     .needsFile = true},
    {.entry = "mnuExportTranslation",
     .menu = Menu::File,
     .caption = "Export &Translation Template...",
     .handler = &FrmMain::onTranslationTemplate,
     .needsFile = true},
    {.entry = "mnuApplyTranslation",
     .menu = Menu::File,
     .caption = "&Apply Translation...",
     .handler = &FrmMain::onApplyTranslation,
     .needsFile = true},
    {.entry = "mnuExit",
     .menu = Menu::File,
     .caption = "E&xit",
     .handler = &FrmMain::onExit,
     .key = 'X',
     .separatorBefore = true},
    {.entry = "mnuExport",
     .menu = Menu::Edit,
     .caption = "&Export Dialogue",
     .handler = &FrmMain::onExport,
     .key = 'E',
     .needsFile = true,
     .button = "cmdExport",
     .buttonCaption = "Ex&port ",
     .buttonTip = "Export all dialogue responses to a text-file for easy editing."},
    {.entry = "mnuImport",
     .menu = Menu::Edit,
     .caption = "&Import Dialogue",
     .handler = &FrmMain::onImport,
     .key = 'I',
     .needsFile = true,
     .button = "cmdImport",
     .buttonCaption = "&Import ",
     .buttonTip = "Import dialogue from previously-exported text file."},
    {.entry = "mnuList",
     .menu = Menu::Edit,
     .caption = "Export NPC &List",
     .handler = &FrmMain::onList,
     .key = 'L',
     .needsFile = true,
     .button = "cmdList",
     .buttonCaption = "Export Character &List",
     .buttonTip = "This will export a list of NPCs and their details from a chosen cell."},
    {.entry = "mnuLoops",
     .menu = Menu::Edit,
     .caption = "&Detect Loops",
     .handler = &FrmMain::onLoops,
     .needsFile = true,
     .button = "cmdLoops",
     .buttonCaption = "&Detect Loops ",
     .buttonTip = "Checks the dialogue of the currently loaded file for looping problems."},
    {.entry = "mnuClean",
     .menu = Menu::Edit,
     .caption = "&Morrowindize Dialogue",
     .handler = &FrmMain::onSpellCheck,
     .key = 'M',
     .needsFile = true,
     .separatorBefore = true,
     .button = "cmdSpellCheck",
     .buttonCaption = "&Morrowindize ",
     .buttonTip = "Fix dialogue for common Morrowind misspellings, capitalization, and invalid characters."},
    {.entry = "mnuOptions",
     .menu = Menu::Edit,
     .caption = "Morrowindization O&ptions",
     .handler = &FrmMain::onOptions,
     .key = 'P',
     .keyChecksEnabled = false,
     .needsFile = true,
     .button = "cmdOptions",
     .buttonCaption = "O&ptions ",
     .buttonTip = "Gives access to Morrowindization options."},
    {.entry = "mnuCheck",
     .menu = Menu::Edit,
     .caption = "&Check Dialogue",
     .handler = &FrmMain::onCheck,
     .needsFile = true,
     .separatorBefore = true},
    {.entry = "mnuQuotesXml",
     .menu = Menu::Edit,
     .caption = "Export &Quotes as XML",
     .handler = &FrmMain::onQuotesXml,
     .needsFile = true,
     .separatorBefore = true},
    {.entry = "mnuQuotesKst",
     .menu = Menu::Edit,
     .caption = "Export Quotes as &Kestrel File",
     .handler = &FrmMain::onQuotesKst,
     .needsFile = true},
    {.entry = "mnuAbout",
     .menu = Menu::Help,
     .caption = "&About",
     .handler = &FrmMain::onAbout,
     .key = 'A',
     .keyChecksEnabled = false},
};

// The key as the menus show it beside a caption.
QString keyHint(const WindowCommand& c) {
    QString sequence =
        QStringLiteral("Ctrl+") + (c.shift ? QStringLiteral("Shift+") : QString()) + QChar(c.key);
    return QKeySequence(sequence).toString(QKeySequence::NativeText);
}

// The window's lasting settings, kept where the desktop keeps each user's.
QSettings windowSettings() {
    return QSettings(QStringLiteral("Quillon"), QStringLiteral("Quillon"));
}
const QString kAskBeforeDiscarding = QStringLiteral("askBeforeDiscarding");
const QString kSpellingDictionary = QStringLiteral("spellingDictionary");

} // namespace

FrmMain::FrmMain(Session& session, Dialogs* dialogs) : session_(session), dialogs_(dialogs) {
    if (!dialogs_) {
        auto qt = std::make_unique<QtDialogs>(this, [this] {
            refresh();
            lblLog->repaint();
        });
        qt->setSpelling([this] { return spelling(); });
        dialogs_ = qt.get();
        ownDialogs_ = std::move(qt);
    }
    setObjectName("frmMain");
    session_.askBeforeDiscarding = windowSettings().value(kAskBeforeDiscarding, true).toBool();
    dictionary_ = windowSettings().value(kSpellingDictionary).toString().toStdString();
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

SpellChecker* FrmMain::spelling() {
    if (!spellingTried_) {
        spellingTried_ = true;
        std::string error;
        std::string name = dictionary_.empty() ? SpellChecker::forCodePage(activeCodePage()) : dictionary_;
        spelling_ = SpellChecker::open(name, error);
        if (spelling_) {
            acceptLoreNames(*spelling_);
            if (std::string unread = acceptPersonalWords(*spelling_); !unread.empty())
                session_.log.LogLine("-Your word list \"" + personalWordsPath() +
                                     "\" cannot be read: " + unread + ".");
        } else {
            session_.log.LogLine("-Spelling is not checked: " + error + ".");
        }
    }
    std::string of = session_.recordsPath + "\n" + session_.fileStamp;
    if (spelling_ && spellingNamesOf_ != of) {
        acceptNames(*spelling_, session_.store);
        spellingNamesOf_ = of;
    }
    return spelling_.get();
}

void FrmMain::chooseDictionary(const std::string& name) {
    dictionary_ = name;
    windowSettings().setValue(kSpellingDictionary, QString::fromStdString(name));
    spelling_.reset();
    spellingTried_ = false;
    spellingNamesOf_.clear();
}

void FrmMain::createDictionaryMenu(QMenu* edit) {
    QMenu* menu = edit->addMenu(QStringLiteral("Spelling Dic&tionary"));
    menu->setObjectName("mnuDictionary");
    auto* group = new QActionGroup(this);
    std::vector<std::string> names = SpellChecker::installed();
    names.insert(names.begin(), std::string());
    for (const std::string& name : names) {
        QAction* a = menu->addAction(name.empty() ? QStringLiteral("By the &Code Page")
                                                  : QString::fromStdString(name));
        a->setObjectName(QStringLiteral("mnuDictionary_") + QString::fromStdString(name));
        a->setCheckable(true);
        a->setChecked(name == dictionary_);
        group->addAction(a);
        connect(a, &QAction::triggered, this, [this, name] { chooseDictionary(name); });
    }
}

FrmMain::~FrmMain() {
    qApp->removeEventFilter(this);
}

void FrmMain::createMenus() {
    QMenu* menus[] = {menuBar()->addMenu(QStringLiteral("&File")),
                      menuBar()->addMenu(QStringLiteral("&Edit")),
                      menuBar()->addMenu(QStringLiteral("&Help"))};
    menus[0]->setObjectName("mnuFile");
    menus[1]->setObjectName("mnuEdit");
    menus[2]->setObjectName("mnuHelp");
    int separators = 0;
    for (const WindowCommand& c : kCommands) {
        QMenu* menu = menus[int(c.menu)];
        if (c.separatorBefore) {
            QAction* separator = menu->addSeparator();
            // The first two carry the names the forms gave them.
            if (++separators <= 2) separator->setObjectName(QStringLiteral("mnuJunk%1").arg(separators));
        }
        // The key shows as a hint beside the caption only: the window's own key table handles the
        // keys, so a registered shortcut would fire a command twice.
        QString text = QString::fromLatin1(c.caption);
        if (c.key) text += '\t' + keyHint(c);
        QAction* a = menu->addAction(text);
        a->setObjectName(c.entry);
        connect(a, &QAction::triggered, this, c.handler);
        entries_.push_back(a);
    }
    // The masters as a read-only context for the NPC list, the quote exports and Check Dialogue:
    // off at every start, since reading a large master costs time the user did not ask for.
    QAction* masters = menus[1]->addAction(QStringLiteral("Use &Masters"));
    masters->setObjectName("mnuUseMasters");
    masters->setCheckable(true);
    masters->setChecked(session_.useMasters);
    connect(masters, &QAction::toggled, this, [this](bool on) { session_.useMasters = on; });
    QAction* ask = menus[1]->addAction(QStringLiteral("Ask &before Discarding Unsaved Changes"));
    ask->setObjectName("mnuAskBeforeDiscarding");
    ask->setCheckable(true);
    ask->setChecked(session_.askBeforeDiscarding);
    connect(ask, &QAction::toggled, this, [this](bool on) {
        session_.askBeforeDiscarding = on;
        windowSettings().setValue(kAskBeforeDiscarding, on);
    });
    createDictionaryMenu(menus[1]);
    // The code page of the file's texts, held for the session; the Edit menu ends with it.
    QMenu* pages = menus[1]->addMenu(QStringLiteral("Code &Page"));
    pages->setObjectName("mnuCodePage");
    auto* group = new QActionGroup(this);
    const std::pair<CodePage, const char*> choices[] = {
        {CodePage::Windows1252, "&Western (Windows-1252)"},
        {CodePage::Windows1250, "&Central European (Windows-1250)"},
        {CodePage::Windows1251, "C&yrillic (Windows-1251)"}};
    for (auto [page, caption] : choices) {
        QAction* a = pages->addAction(QString::fromLatin1(caption));
        a->setObjectName(QStringLiteral("mnu") + QString::fromLatin1(codePageName(page)));
        a->setCheckable(true);
        a->setChecked(page == activeCodePage());
        group->addAction(a);
        connect(a, &QAction::triggered, this, [this, page] { chooseCodePage(page); });
    }
}

void FrmMain::createFrames() {
    // The Edit entries and their twin buttons run the same handlers.
    for (const WindowCommand& c : kCommands) {
        if (!c.button) {
            buttons_.push_back(nullptr);
            continue;
        }
        auto* b = new QPushButton(QString::fromLatin1(c.buttonCaption));
        b->setObjectName(c.button);
        b->setToolTip(QString::fromLatin1(c.buttonTip));
        connect(b, &QPushButton::clicked, this, c.handler);
        buttons_.push_back(b);
    }
    auto radio = [](const char* name, const char* caption, const char* tip) {
        auto* r = new QRadioButton(QString::fromLatin1(caption));
        r->setObjectName(name);
        r->setToolTip(QString::fromLatin1(tip));
        return r;
    };
    optPure = radio("optPure", "Pure Text", "This will export the NPC list in a simple text format.");
    optHTML = radio("optHTML", "HTML", "This will export the NPC List with HTML encoding.");
    optPHP = radio("optPHP", "phpBB",
                   "This will export the NPC list with phpBB encoding, ready to be posted on a forum.");
    optPure->setChecked(true);
    chkClones = new QCheckBox(QStringLiteral("Export Clones"));
    chkClones->setObjectName("chkClones");
    // "exporitng" is the tool tip's own spelling.
    chkClones->setToolTip(QStringLiteral(
        "Checking this will allow exporitng of Clone NPCs, such as guards, \"cattle\", and the like."));
}

QWidget* FrmMain::buttonOf(const char* entry) const {
    for (std::size_t i = 0; i < std::size(kCommands); ++i)
        if (std::strcmp(kCommands[i].entry, entry) == 0) return buttons_[i];
    return nullptr;
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
        for (QWidget* w : widgets)
            layout->addWidget(w);
        return box;
    };
    auto* left = new QVBoxLayout;
    left->addWidget(
        frame("frmDummy1", "Dialogue", {buttonOf("mnuExport"), buttonOf("mnuImport"), buttonOf("mnuLoops")}));
    left->addWidget(frame("Frame1", "Morrowindization", {buttonOf("mnuClean"), buttonOf("mnuOptions")}));
    left->addWidget(frame("frmDummy2", "Other", {buttonOf("mnuList"), optPure, optHTML, optPHP, chkClones}));
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
    // OpenMW's encoding= setting, when it has one, says the player's language.
    if (std::optional<CodePage> page = systemCodePage()) chooseCodePage(*page);
    std::string folder = systemDataFolder();
    if (!folder.empty()) {
        session_.openFolder = folder;
        return;
    }
    session_.openFolder = QCoreApplication::applicationDirPath().toStdString();
    session_.log.setCaption(std::string(kGameNotFoundWarning) + "\r\n");
}

void FrmMain::chooseCodePage(CodePage page) {
    setActiveCodePage(page);
    if (dictionary_.empty()) chooseDictionary({}); // the code page's dictionary changes with it
    if (auto* a = findChild<QAction*>(QStringLiteral("mnu") + QString::fromLatin1(codePageName(page))))
        a->setChecked(true);
    refresh();
}

void FrmMain::refresh() {
    // The file's name, with a mark while it holds changes not yet saved.
    setWindowTitle(session_.currentPath.empty()
                       ? QStringLiteral("Quillon")
                       : fromCodePage(bareName(session_.currentPath)) + QStringLiteral("[*] - Quillon"));
    setWindowModified(session_.modified);
    QString log = fromCodePage(session_.log.caption());
    log.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    if (log.endsWith('\n')) log.chop(1);
    lblLog->setText(log);
    for (std::size_t i = 0; i < kCountLabels; ++i)
        lblCount[i]->setText(QString::fromStdString(session_.counts.shown[i]));
    for (std::size_t i = 0; i < std::size(kCommands); ++i) {
        if (!kCommands[i].needsFile) continue;
        entries_[i]->setEnabled(session_.fileGroupEnabled);
        if (buttons_[i]) buttons_[i]->setEnabled(session_.fileGroupEnabled);
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
        if (!mayDropRecords(session_, *dialogs_)) return;
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
    // Shift picks the shifted twin of a key (Ctrl+Shift+S); a key without one ignores Shift.
    const WindowCommand* found = nullptr;
    std::size_t index = 0;
    for (std::size_t i = 0; i < std::size(kCommands); ++i) {
        const WindowCommand& c = kCommands[i];
        if (c.key == 0 || key != c.key) continue; // Qt's letter keys are their capitals
        if (!found || c.shift == bool(shiftState & 1)) found = &c, index = i;
    }
    if (!found) return false;
    // A known key is taken even while its command is disabled.
    if (!found->keyChecksEnabled || entries_[index]->isEnabled()) (this->*found->handler)();
    return true;
}

void FrmMain::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void FrmMain::dropEvent(QDropEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    if (!urls.isEmpty() && urls.front().isLocalFile()) openPathNow(urls.front().toLocalFile());
}

void FrmMain::onOpen() {
    run([&] {
        if (mayDropRecords(session_, *dialogs_)) Open(session_, *dialogs_);
    });
}
void FrmMain::onClose() {
    run([&] {
        if (mayDropRecords(session_, *dialogs_)) Close(session_);
    });
}
void FrmMain::onExit() {
    if (close()) QApplication::quit();
}
void FrmMain::closeEvent(QCloseEvent* event) {
    bool leave = true;
    run([&] { leave = mayDropRecords(session_, *dialogs_); });
    if (!leave) {
        event->ignore();
        return;
    }
    Exit(session_);
    event->accept();
}
void FrmMain::onSave() {
    run([&] { Save(session_, *dialogs_); });
}
void FrmMain::onSaveAs() {
    run([&] { SaveAs(session_, *dialogs_); });
}
void FrmMain::onExport() {
    run([&] { ExportDialogue(session_, *dialogs_); });
}
void FrmMain::onImport() {
    run([&] { ImportDialogue(session_, *dialogs_); });
}
void FrmMain::onLoops() {
    run([&] { DetectLoops(session_, *dialogs_); });
}
void FrmMain::onSpellCheck() {
    run([&] { Morrowindize(session_, *dialogs_); });
}
void FrmMain::onOptions() {
    run([&] { dialogs_->editOptions(session_.settings); });
}
void FrmMain::onList() {
    NpcListFormat format = optHTML->isChecked()  ? NpcListFormat::Html
                           : optPHP->isChecked() ? NpcListFormat::PhpBB
                                                 : NpcListFormat::PlainText;
    // A checked "Export Clones" box leaves the clones out: the list's own rule, kept as it is.
    run([&] { ExportNpcList(session_, *dialogs_, format, chkClones->isChecked()); });
}
void FrmMain::onTranslationTemplate() {
    run([&] { ExportTranslationTemplate(session_, *dialogs_); });
}
void FrmMain::onApplyTranslation() {
    run([&] { ApplyTranslation(session_, *dialogs_); });
}
void FrmMain::onCheck() {
    run([&] { CheckDialogue(session_, *dialogs_, spelling()); });
}
void FrmMain::onQuotesXml() {
    run([&] { ExportQuotesXml(session_, *dialogs_); });
}
void FrmMain::onQuotesKst() {
    run([&] { ExportQuotesKst(session_, *dialogs_); });
}
void FrmMain::onAbout() {
    dialogs_->about();
}

} // namespace quillon
