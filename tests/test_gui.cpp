// The window offscreen with scripted dialogs, so that no test waits on a modal dialog.
#include "app/encoding.h"
#include "cleanup/frm_options.h"
#include "dialogue/frm_info.h"
#include "dialogue/frm_info2.h"
#include "helpers.h"
#include "qt_text/code_page.h"
#include "ui/frm_main.h"
#include "ui/qt_dialogs.h"
#include "workbench/frm_check.h"
#include "workbench/spell_checker.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSettings>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>
#include <QTimer>

#include <functional>

using namespace quillon;
using namespace quillon::test;

namespace {

struct Window {
    Session session;
    ScriptedDialogs dialogs;
    FrmMain window{session, &dialogs};
    TempDir dir;

    Window() {
        window.show();
        window.activateWindow();
        QApplication::setActiveWindow(&window);
    }
    template <class T = QWidget> T* find(const char* name) { return window.findChild<T*>(name); }
    QAction* action(const char* name) { return window.findChild<QAction*>(name); }
    void key(Qt::Key k, Qt::KeyboardModifiers m) { QTest::keyClick(find<QPushButton>("cmdExport"), k, m); }
    std::string open() {
        std::string path = dir.write(
            "w.esp", file(2, {Rec("STAT").z("NAME", "s").z("MODL", "m").bytes(),
                              Rec("DIAL").z("NAME", "T").sub("DATA", std::string(1, '\0')).bytes()}));
        dialogs.openPaths = {path};
        key(Qt::Key_O, Qt::ControlModifier);
        return path;
    }
};

} // namespace

TEST(MainWindow, CaptionsAndStartingState) {
    Window w;
    EXPECT_EQ(w.window.windowTitle(), "Quillon");
    EXPECT_EQ(w.find<QPushButton>("cmdExport")->text(), "Ex&port ");
    EXPECT_EQ(w.find<QPushButton>("cmdList")->toolTip(),
              "This will export a list of NPCs and their details from a chosen cell.");
    EXPECT_EQ(w.find<QCheckBox>("chkClones")->toolTip(),
              "Checking this will allow exporitng of Clone NPCs, such as guards, \"cattle\", and the like.");
    EXPECT_EQ(w.find<QLabel>("lblSaves")->text(), "Savegames Specific");
    EXPECT_EQ(w.find<QLabel>("lblRecName44")->text(), "Total:");
    for (const char* name : {"cmdExport", "cmdImport", "cmdLoops", "cmdSpellCheck", "cmdOptions", "cmdList"})
        EXPECT_FALSE(w.find(name)->isEnabled()) << name;
    EXPECT_FALSE(w.action("mnuSave")->isEnabled());
    EXPECT_TRUE(w.action("mnuOpen")->isEnabled());
    // Keys show as hints; the window's own key table handles them, so none is registered twice.
    EXPECT_EQ(w.action("mnuSaveAs")->text(), "&Save as\tCtrl+Shift+S");
    EXPECT_EQ(w.action("mnuLoops")->text(), "&Detect Loops");
    for (QAction* a : w.window.findChildren<QAction*>())
        EXPECT_TRUE(a->shortcut().isEmpty()) << a->text().toStdString();
    EXPECT_TRUE(w.find("optPure")->isEnabled());
}

TEST(MainWindow, ShortcutsOpenSaveAndClose) {
    Window w;
    w.key(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier); // Save As disabled: nothing
    EXPECT_TRUE(w.dialogs.fileRequests.empty());
    std::string path = w.open();
    EXPECT_EQ(w.dialogs.fileRequests.size(), 1u);
    EXPECT_TRUE(w.find("cmdLoops")->isEnabled());
    EXPECT_TRUE(w.action("mnuClose")->isEnabled());
    EXPECT_EQ(w.find<QLabel>("lblCount39")->text(), "1");
    EXPECT_EQ(w.find<QLabel>("lblCount44")->text(), "3");

    w.key(Qt::Key_D, Qt::ControlModifier); // no key for loop detection
    EXPECT_EQ(w.session.log.caption().find("-Checking"), std::string::npos);
    w.key(Qt::Key_S, Qt::ControlModifier | Qt::AltModifier); // shift state 6: Save
    EXPECT_NE(w.session.log.caption().find("-Finished writing \"w.esp\""), std::string::npos);
    w.dialogs.savePaths = {""};
    w.key(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier); // Save As asks for a file
    EXPECT_EQ(w.dialogs.fileRequests.back().filterIndex, 2);

    for (int i = 0; i < 8; ++i)
        w.key(Qt::Key_C, Qt::ControlModifier); // the first closes, the rest are disabled
    EXPECT_FALSE(w.find("cmdExport")->isEnabled());
    EXPECT_EQ(w.find<QLabel>("lblCount44")->text(), "0");
    QString log = w.find<QLabel>("lblLog")->text();
    EXPECT_EQ(log.count(QChar(0x0A)), 5); // the newest six lines only
    EXPECT_TRUE(log.endsWith("-Closed \"w.esp\" successfully."));
}

// Every key of the window's table, with no file open and with one: a file command's key does
// nothing until a file is open, except Ctrl+P, which shows the options all the same.
TEST(MainWindow, KeyTable) {
    struct Row {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        bool needsFile;
        std::function<bool(Window&)> ran;
    };
    auto logHas = [](const char* text) {
        return [text](Window& w) { return w.session.log.caption().find(text) != std::string::npos; };
    };
    // The last file dialog asked for, if any.
    auto lastRequest = [](Window& w) {
        return w.dialogs.fileRequests.empty() ? FileRequest{} : w.dialogs.fileRequests.back();
    };
    const Qt::KeyboardModifiers ctrl = Qt::ControlModifier, shift = Qt::ControlModifier | Qt::ShiftModifier;
    const std::vector<Row> rows = {
        {Qt::Key_O, ctrl, false, [](Window& w) { return w.dialogs.fileRequests.size() == 2; }},
        {Qt::Key_S, ctrl, true, logHas("-Finished writing \"w.esp\"")},
        {Qt::Key_S, shift, true, [&](Window& w) { return lastRequest(w).filterIndex == 2; }},
        {Qt::Key_C, ctrl, true, logHas("-Closed")},
        {Qt::Key_E, ctrl, true, [&](Window& w) { return lastRequest(w).defaultExtension == ".txt"; }},
        {Qt::Key_I, ctrl, true, [&](Window& w) { return lastRequest(w).filter.rfind("Text", 0) == 0; }},
        {Qt::Key_M, ctrl, true, logHas("-Morrowindizing")},
        {Qt::Key_L, ctrl, true, [](Window& w) { return !w.dialogs.messages.empty(); }},
        {Qt::Key_P, ctrl, false, [](Window& w) { return w.dialogs.optionsShown == 1; }},
        {Qt::Key_A, ctrl, false, [](Window& w) { return w.dialogs.aboutShown == 1; }},
        {Qt::Key_X, ctrl, false, [](Window& w) { return !w.window.isVisible(); }},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(QKeySequence(row.modifiers | row.key).toString().toStdString());
        Window none;
        none.dialogs.openPaths = {""};
        none.dialogs.savePaths = {""};
        none.key(row.key, row.modifiers);
        if (row.key == Qt::Key_O) none.dialogs.fileRequests.push_back({}); // the one open() would add
        EXPECT_EQ(row.ran(none), !row.needsFile);

        Window opened;
        opened.open();
        opened.dialogs.savePaths = {""};
        opened.key(row.key, row.modifiers);
        EXPECT_TRUE(row.ran(opened));
    }
}

TEST(MainWindow, SaveAfterARefusedOpenDoesNotReplaceTheRefusedFile) {
    Window w;
    std::string path = w.open();
    std::string notes = w.dir.write("notes.txt", "eleven kilobytes of notes");
    w.dialogs.openPaths = {notes};
    w.key(Qt::Key_O, Qt::ControlModifier);
    w.key(Qt::Key_S, Qt::ControlModifier); // unanswered: the question's default keeps the file
    EXPECT_EQ(w.dialogs.messages.back(),
              "The records open here were read from \"w.esp\". Save would replace \"notes.txt\" with them.");
    EXPECT_EQ(readAll(notes), "eleven kilobytes of notes");
}

namespace {

// Presses Enter on the message box that opens next and reports the button Enter chose.
void pressEnterOnNextBox(QString* defaultText, QStringList* buttons) {
    QTimer::singleShot(0, [=] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        *defaultText = box->defaultButton() ? box->defaultButton()->text() : QString();
        for (QAbstractButton* b : box->buttons())
            *buttons << b->text();
        QTest::keyClick(box, Qt::Key_Return);
    });
}

} // namespace

TEST(QtDialogs, QuestionsThatCanDestroyAFileDefaultToKeepingIt) {
    QWidget owner;
    QtDialogs dialogs(&owner, [] {});
    QString chosen;
    QStringList buttons;
    pressEnterOnNextBox(&chosen, &buttons);
    EXPECT_EQ(dialogs.ask({QuestionId::ReplaceOtherFile}, "Replace it?", Buttons::YesNoDefaultNo,
                          Icon::Warning, ""),
              Answer::No);
    EXPECT_EQ(chosen, "&No");

    DamageReport report{"mod.esp", {{"LUAL", "lua", 418, "record of unknown type LUAL"}}, true};
    buttons.clear();
    pressEnterOnNextBox(&chosen, &buttons);
    EXPECT_EQ(dialogs.damagedOutput(report), DamageChoice::WriteNothing);
    EXPECT_EQ(chosen.remove(QChar('&')), "Cancel");
    EXPECT_TRUE(buttons.contains("&Repair"));
    EXPECT_TRUE(buttons.contains("Write &As Is"));
    report.repairable = false;
    buttons.clear();
    pressEnterOnNextBox(&chosen, &buttons);
    dialogs.damagedOutput(report);
    EXPECT_FALSE(buttons.contains("&Repair")); // offered only when it fixes every record
}

TEST(FrmInfo, LengthLimitAndActorLabel) {
    FrmInfo form("fargoth the elder", "Background", "Hi\r\nthere");
    auto* length = form.findChild<QLabel*>("lblLength");
    EXPECT_EQ(length->text(), "Length: 9"); // the line break counts two
    EXPECT_EQ(form.findChild<QLabel*>("lblActor")->text(), "Actor: Fargoth The Elder");
    auto* text = form.findChild<QPlainTextEdit*>("txtINFO");
    text->setPlainText(QString(513, 'a'));
    EXPECT_FALSE(form.findChild<QPushButton*>("cmdAccept")->isEnabled());
    text->setPlainText(QString(512, 'a'));
    EXPECT_TRUE(form.findChild<QPushButton*>("cmdAccept")->isEnabled());
    QTest::mouseClick(form.findChild<QPushButton*>("cmdAccept"), Qt::LeftButton);
    EXPECT_EQ(form.text(), std::string(512, 'a'));

    FrmInfo journal("Journal Entry", "Quest", "x");
    EXPECT_EQ(journal.findChild<QLabel*>("lblActor")->text(), "Journal Entry");
    journal.findChild<QPlainTextEdit*>("txtINFO")->setPlainText("changed");
    QTest::mouseClick(journal.findChild<QPushButton*>("cmdCancel"), Qt::LeftButton);
    EXPECT_EQ(journal.text(), "x");
}

TEST(FrmInfo2, StatusesAndTexts) {
    for (auto [name, status] : {std::pair{"cmdAccept", LoopFixStatus::Accept},
                                {"cmdCancel", LoopFixStatus::Cancel},
                                {"cmdSkip", LoopFixStatus::Skip}}) {
        FrmInfo2 form("a", "T", "text", "Choice \"x\" 3", 3);
        EXPECT_EQ(form.findChild<QLabel*>("lblChoice")->text(), "Choice: 3");
        form.findChild<QPlainTextEdit*>("txtResult")->setPlainText("Goodbye");
        QTest::mouseClick(form.findChild<QPushButton*>(name), Qt::LeftButton);
        EXPECT_EQ(form.status(), status);
        EXPECT_EQ(form.result(), status == LoopFixStatus::Accept ? "Goodbye" : "Choice \"x\" 3");
    }
}

TEST(FrmOptions, LoadOkCancelAndTheEllipsisRule) {
    CleanupSettings settings;
    settings.isSentences = true;
    settings.isEllipsis = true;
    {
        FrmOptions form(settings);
        EXPECT_EQ(form.windowTitle(), "Quillon Options");
        EXPECT_EQ(form.findChild<QCheckBox*>("chkCap")->toolTip(),
                  "Capiotalize the first letter in every new sentence.");
        EXPECT_TRUE(form.findChild<QCheckBox*>("chkEllipsis")->isChecked());
        form.findChild<QCheckBox*>("chkCap")->click();
        EXPECT_FALSE(form.findChild<QCheckBox*>("chkEllipsis")->isChecked());
        EXPECT_FALSE(form.findChild<QCheckBox*>("chkEllipsis")->isEnabled());
        form.findChild<QCheckBox*>("chkSlang")->setChecked(true);
        QTest::mouseClick(form.findChild<QPushButton*>("cmdOptCancel"), Qt::LeftButton);
    }
    EXPECT_TRUE(settings.isEllipsis); // Cancel keeps every setting
    EXPECT_FALSE(settings.isSlang);
    FrmOptions form(settings);
    form.findChild<QCheckBox*>("chkSlang")->setChecked(true);
    QTest::mouseClick(form.findChild<QPushButton*>("cmdOptOk"), Qt::LeftButton);
    EXPECT_TRUE(settings.isSlang);
    EXPECT_TRUE(settings.isSentences);
}

TEST(QtDialogs, FiltersKeepTheirPatterns) {
    QStringList filters = toQtFilters("Elder Scrolls Master File (*.ESM)|*.ESM;|Elder Scrolls Plugin File "
                                      "(*.ESP)|*.ESP| All Files (*.*)| *.*");
    ASSERT_EQ(filters.size(), 3);
    EXPECT_EQ(filters[0], "Elder Scrolls Master File (*.ESM) (*.ESM *.esm)");
    EXPECT_EQ(filters[2], "All Files (*.*) (*.*)");
}

// Changes show in the title, and Close, the title bar's close and Open offer them for saving; a
// file read only in part is not saved over its whole self unasked.
TEST(MainWindow, NeitherChangesNorFilesAreDroppedUnasked) {
    Window w;
    w.open();
    EXPECT_EQ(w.window.windowTitle(), "w.esp[*] - Quillon");
    EXPECT_FALSE(w.window.isWindowModified());
    w.session.modified = true; // as an import or a clean-up leaves it
    w.window.refresh();
    EXPECT_TRUE(w.window.isWindowModified());
    w.dialogs.answers = {Answer::Cancel};
    w.key(Qt::Key_C, Qt::ControlModifier); // Close
    EXPECT_EQ(w.dialogs.asked.back().id, QuestionId::SaveChanges);
    EXPECT_TRUE(w.action("mnuSave")->isEnabled());
    w.dialogs.answers = {Answer::Cancel};
    EXPECT_FALSE(w.window.close());
    EXPECT_TRUE(w.window.isVisible());
    w.dialogs.answers = {Answer::No}; // discard
    w.key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_FALSE(w.action("mnuSave")->isEnabled());
    EXPECT_EQ(w.window.windowTitle(), "Quillon");

    std::string part = w.dir.write(
        "u.esp", file(0, {Rec("GLOB").z("NAME", "g").sub("FNAM", "f").sub("FLTV", le32(0)).bytes(),
                          Rec("ZZZZ").z("NAME", "x").bytes()}));
    std::string before = readAll(part);
    w.dialogs.openPaths = {part};
    w.dialogs.answers = {Answer::No}; // stop reading at the unknown record
    w.key(Qt::Key_O, Qt::ControlModifier);
    ASSERT_TRUE(w.action("mnuSave")->isEnabled());
    std::size_t asked = w.dialogs.asked.size();
    w.key(Qt::Key_S, Qt::ControlModifier); // answered with the default, No
    ASSERT_GT(w.dialogs.asked.size(), asked);
    EXPECT_EQ(w.dialogs.asked.back().id, QuestionId::SaveIncompleteRead);
    EXPECT_EQ(readAll(part), before);
}

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    // The window's lasting settings go to a folder of the run's own, never the user's.
    QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    // And the writer's own word list too.
    qputenv("XDG_DATA_HOME", settings.path().toUtf8());
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

// The check's table narrows to one kind, shows a style finding before and after, and edits the
// response of a double-clicked row.
TEST(FrmCheck, FilterStyleTextsAndEdit) {
    std::vector<Finding> findings(3);
    findings[0].kind = "loop";
    findings[0].id = "1";
    findings[1].kind = "style";
    findings[1].id = "2";
    findings[1].before = "the sea of ghosts";
    findings[1].after = "the Sea Of Ghosts";
    findings[2].kind = "master";
    findings[2].record = "TES3";
    std::vector<std::size_t> edited;
    FrmCheck form(findings, [&](std::size_t i) {
        edited.push_back(i);
        return std::string("edited");
    });
    auto* grid = form.findChild<QTableWidget*>("grdFindings");
    ASSERT_EQ(grid->rowCount(), 3);
    EXPECT_EQ(form.findChild<QLabel*>("lblCount")->text(), "3 of 3 findings");
    form.findChild<QComboBox*>("cboKind")->setCurrentText("style");
    EXPECT_TRUE(grid->isRowHidden(0));
    EXPECT_FALSE(grid->isRowHidden(1));
    EXPECT_EQ(form.findChild<QLabel*>("lblCount")->text(), "1 of 3 findings");
    grid->selectRow(1);
    EXPECT_TRUE(form.findChild<QPlainTextEdit*>("txtAfter")->toPlainText().endsWith("the Sea Of Ghosts"));
    emit grid->cellDoubleClicked(1, 0);
    emit grid->cellDoubleClicked(2, 0); // a master is no response: nothing to edit
    EXPECT_EQ(edited, std::vector<std::size_t>{1});
}

// The window's code page: chosen in the Edit menu, it decodes the texts the forms show and
// encodes what is typed in them.
TEST(MainWindow, CodePageChoiceDecodesAndEncodesTexts) {
    Window w;
    EXPECT_FALSE(toCodePage(QStringLiteral("Привет")).has_value()); // Windows-1252 has no Cyrillic
    QAction* cyrillic = w.action("mnuwindows-1251");
    ASSERT_NE(cyrillic, nullptr);
    cyrillic->trigger();
    EXPECT_EQ(activeCodePage(), CodePage::Windows1251);
    EXPECT_EQ(fromCodePage("\xCF\xF0\xE8\xE2\xE5\xF2"), QStringLiteral("Привет"));
    EXPECT_EQ(toCodePage(QStringLiteral("ПРИВЕТ")), std::optional<std::string>("\xCF\xD0\xC8\xC2\xC5\xD2"));
    EXPECT_TRUE(cyrillic->isChecked());
    w.action("mnuwindows-1252")->trigger();
    EXPECT_EQ(activeCodePage(), CodePage::Windows1252);
}

// Edit > Use Masters: off at start; on, the NPC list lists the master's NPCs placed by the plugin
// and the log names the masters read.
TEST(MainWindow, UseMastersListsTheMastersNpcs) {
    Window w;
    QAction* use = w.action("mnuUseMasters");
    ASSERT_NE(use, nullptr);
    EXPECT_TRUE(use->isCheckable());
    EXPECT_FALSE(use->isChecked());
    w.dir.write("Base.esm",
                file(0, {Rec("NPC_").z("NAME", "ann").z("FNAM", "Ann Arden").z("RNAM", "Nord").bytes()}));
    std::string mast =
        Rec("TES3").sub("HEDR", hedr(0)).z("MAST", "base.ESM").sub("DATA", std::string(8, '\0')).bytes();
    std::string plugin = w.dir.write(
        "p.esp", mast + Rec("CELL")
                            .z("NAME", "Hall")
                            .sub("DATA", le32(1) + le32(0) + le32(0))
                            .raw("FRMR" + le32(4) + le32(1) + "NAME" + le32(4) + std::string("ann", 4))
                            .bytes());
    w.dialogs.openPaths = {plugin};
    w.key(Qt::Key_O, Qt::ControlModifier);
    use->trigger();
    EXPECT_TRUE(w.session.useMasters);
    w.dialogs.savePaths = {w.dir.file("sheet.txt")};
    w.dialogs.inputs = {"hall"};
    QTest::mouseClick(w.find<QPushButton>("cmdList"), Qt::LeftButton);
    EXPECT_NE(readAll(w.dir.file("sheet.txt")).find("Ann Arden"), std::string::npos)
        << w.session.log.caption();
    EXPECT_NE(w.session.log.caption().find("-Read the masters of \"p.esp\" (base.ESM) in "),
              std::string::npos);
}

// The response editor underlines an unknown word as it stands and offers its correction and
// "Ignore" on right-click; an ignored word is no longer underlined.
TEST(FrmInfo, UnderlinesUnknownWordsAndIgnoresThemOnRequest) {
    std::string error;
    std::unique_ptr<SpellChecker> checker = SpellChecker::open("en_US", error);
    if (!checker) GTEST_SKIP() << error;
    FrmInfo form("fargoth", "T", "See you tommorow.", nullptr, checker.get());
    form.show();
    QApplication::processEvents(); // the highlighter's first pass is queued
    auto* text = form.findChild<QPlainTextEdit*>("txtINFO");
    auto underlined = [&] {
        std::vector<std::pair<int, int>> out;
        for (const QTextLayout::FormatRange& r : text->document()->firstBlock().layout()->formats())
            if (r.format.underlineStyle() == QTextCharFormat::SpellCheckUnderline)
                out.emplace_back(r.start, r.length);
        return out;
    };
    EXPECT_EQ(underlined(), (std::vector<std::pair<int, int>>{{8, 8}}));
    QStringList offered;
    QTimer::singleShot(0, [&] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        for (QAction* a : menu->actions())
            offered << a->text();
        menu->findChild<QAction*>("mnuIgnoreWord")->trigger();
        menu->close();
    });
    QRect word = text->cursorRect(QTextCursor(text->document()->findBlockByNumber(0)));
    QPoint at(word.left() + text->fontMetrics().horizontalAdvance("See you tom"), word.center().y());
    emit text->customContextMenuRequested(at);
    EXPECT_TRUE(offered.contains("tomorrow")) << offered.join(",").toStdString();
    EXPECT_TRUE(offered.contains("Add to My &Words")) << offered.join(",").toStdString();
    EXPECT_TRUE(underlined().empty());
}

// File > Export Translation Template... and Apply Translation...: the PO round trip in the window,
// with a summary of what was applied.
TEST(MainWindow, TranslationTemplateAndApplyingAPo) {
    Window w;
    std::string path =
        w.dir.write("t.esp", file(2, {Rec("DIAL").z("NAME", "T").sub("DATA", std::string(1, '\0')).bytes(),
                                      response("1", "a", "Hello.")}));
    w.dialogs.openPaths = {path};
    w.key(Qt::Key_O, Qt::ControlModifier);
    ASSERT_TRUE(w.action("mnuExportTranslation")->isEnabled());
    w.dialogs.savePaths = {w.dir.file("t.pot")};
    w.action("mnuExportTranslation")->trigger();
    std::string pot = readAll(w.dir.file("t.pot"));
    ASSERT_NE(pot.find("msgctxt \"INFO 1\""), std::string::npos) << pot;
    std::string po = pot;
    po.replace(po.find("msgstr \"\"", po.find("msgid \"Hello.\"")), 9, "msgstr \"Hallo.\"");
    w.dialogs.openPaths = {w.dir.write("t.po", po)};
    w.action("mnuApplyTranslation")->trigger();
    EXPECT_EQ(w.session.store.INFO[0].NAME, "Hallo.");
    ASSERT_FALSE(w.dialogs.messages.empty());
    EXPECT_EQ(w.dialogs.messages.back().rfind("Applied 1 translation(s)", 0), 0u)
        << w.dialogs.messages.back();
}

// A spelling finding's word added to the writer's own words takes every finding of it away, and
// the list keeps it for later checks.
TEST(FrmCheck, AddToMyWordsTakesEveryFindingOfTheWordAway) {
    std::vector<Finding> findings(3);
    for (Finding& f : findings)
        f.kind = "spelling";
    findings[0].word = "kwamakin";
    findings[1].word = "tommorow";
    findings[2].word = "Kwamakin";
    std::vector<std::string> added;
    FrmCheck form(
        findings, [](std::size_t) { return std::string(); },
        [&](const std::string& word) {
            added.push_back(word);
            return std::string();
        });
    auto* grid = form.findChild<QTableWidget*>("grdFindings");
    auto* add = form.findChild<QPushButton*>("cmdAddWord");
    EXPECT_FALSE(add->isEnabled());
    grid->selectRow(0);
    ASSERT_TRUE(add->isEnabled());
    add->click();
    EXPECT_EQ(added, std::vector<std::string>{"kwamakin"});
    EXPECT_TRUE(grid->isRowHidden(0));
    EXPECT_FALSE(grid->isRowHidden(1));
    EXPECT_TRUE(grid->isRowHidden(2));
    EXPECT_EQ(form.findChild<QLabel*>("lblCount")->text(), "1 of 3 findings");
}

// The spelling dictionary is chosen in the Edit menu among those installed (by default the code
// page's) and remembered for the next start.
TEST(MainWindow, TheDictionaryChosenIsRemembered) {
    std::string chosen;
    {
        Window w;
        QMenu* menu = w.find<QMenu>("mnuDictionary");
        ASSERT_NE(menu, nullptr);
        ASSERT_GE(menu->actions().size(), 1);
        EXPECT_TRUE(menu->actions().front()->isChecked()); // by the code page
        if (menu->actions().size() < 2) GTEST_SKIP() << "no dictionary is installed";
        QAction* other = menu->actions().back();
        chosen = other->objectName().toStdString();
        other->trigger();
    }
    Window again;
    EXPECT_TRUE(again.action(chosen.c_str())->isChecked());
    again.action("mnuDictionary_")->trigger(); // back to the code page's
}
