#include "ui/qt_dialogs.h"

#include "app/damage_report.h"
#include "cleanup/frm_options.h"
#include "dialogue/frm_info.h"
#include "dialogue/frm_info2.h"
#include "qt_text/code_page.h"
#include "ui/frm_about.h"
#include "workbench/frm_check.h"
#include "workbench/personal_words.h"

#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>

namespace quillon {

namespace {

QString shown(const std::string& bytes) {
    QString text = fromCodePage(bytes);
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return text;
}

QString titleOf(const std::string& title) {
    return title.empty() ? QStringLiteral("Quillon") : fromCodePage(title);
}

} // namespace

QStringList toQtFilters(const std::string& filter) {
    QStringList parts = QString::fromStdString(filter).split('|');
    QStringList out;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QStringList patterns;
        for (const QString& p : parts[i + 1].split(';')) {
            QString pattern = p.trimmed();
            if (pattern.isEmpty()) continue;
            patterns << pattern;
            if (pattern.toLower() != pattern) patterns << pattern.toLower();
        }
        out << parts[i].trimmed() + " (" + patterns.join(' ') + ")";
    }
    return out;
}

Answer QtDialogs::message(const std::string& text, Buttons buttons, Icon icon, const std::string& title) {
    QMessageBox box(owner_);
    box.setWindowTitle(titleOf(title));
    box.setText(shown(text));
    switch (icon) {
    case Icon::None: box.setIcon(QMessageBox::NoIcon); break;
    case Icon::Information: box.setIcon(QMessageBox::Information); break;
    case Icon::Question: box.setIcon(QMessageBox::Question); break;
    case Icon::Warning: box.setIcon(QMessageBox::Warning); break;
    case Icon::Critical: box.setIcon(QMessageBox::Critical); break;
    }
    switch (buttons) {
    case Buttons::Ok: box.setStandardButtons(QMessageBox::Ok); break;
    case Buttons::YesNo: box.setStandardButtons(QMessageBox::Yes | QMessageBox::No); break;
    case Buttons::YesNoCancel:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        break;
    case Buttons::YesNoDefaultNo: box.setStandardButtons(QMessageBox::Yes | QMessageBox::No); break;
    case Buttons::SaveDiscardCancel:
        box.setStandardButtons(QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
        box.setDefaultButton(QMessageBox::Save);
        box.setEscapeButton(QMessageBox::Cancel);
        break;
    }
    if (buttons == Buttons::YesNoDefaultNo) {
        box.setDefaultButton(QMessageBox::No);
        box.setEscapeButton(QMessageBox::No);
    } else if (buttons != Buttons::Ok && buttons != Buttons::SaveDiscardCancel) {
        box.setDefaultButton(QMessageBox::Yes);
    }
    switch (box.exec()) {
    case QMessageBox::Yes:
    case QMessageBox::Save: return Answer::Yes;
    case QMessageBox::No:
    case QMessageBox::Discard: return Answer::No;
    case QMessageBox::Cancel: return Answer::Cancel;
    default: return buttons == Buttons::Ok ? Answer::Ok : Answer::Cancel;
    }
}

std::string QtDialogs::input(const Question&, const std::string& prompt, const std::string& title,
                             const std::string& defaultText) {
    bool ok = false;
    QString typed = QInputDialog::getText(owner_, titleOf(title), shown(prompt), QLineEdit::Normal,
                                          fromCodePage(defaultText), &ok);
    if (!ok) return {};
    std::optional<std::string> bytes = toCodePage(typed);
    if (!bytes) {
        message(cannotStoreMessage().toStdString(), Buttons::Ok, Icon::Warning, "");
        return {};
    }
    return *bytes;
}

std::string QtDialogs::chooseFile(const FileRequest& request, bool save) {
    QFileDialog dialog(owner_);
    dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    QStringList filters = toQtFilters(request.filter);
    dialog.setNameFilters(filters);
    if (request.filterIndex >= 1 && request.filterIndex <= filters.size())
        dialog.selectNameFilter(filters[request.filterIndex - 1]);
    if (!request.initialFolder.empty()) dialog.setDirectory(QString::fromStdString(request.initialFolder));
    // A name typed without an extension gets the chosen filter's.
    auto suffixFor = [&](int index) {
        std::string extension = filterExtension(request.filter, index, request.defaultExtension);
        dialog.setDefaultSuffix(QString::fromStdString(extension).remove(0, 1));
    };
    suffixFor(request.filterIndex);
    QObject::connect(&dialog, &QFileDialog::filterSelected,
                     [&](const QString& chosen) { suffixFor(int(filters.indexOf(chosen)) + 1); });
    // Every save dialog asks before it replaces a file, whatever the request's flags say.
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
    return dialog.selectedFiles().front().toStdString();
}

std::string QtDialogs::openFile(const FileRequest& request) {
    return chooseFile(request, false);
}
std::string QtDialogs::saveFile(const FileRequest& request) {
    return chooseFile(request, true);
}

std::string QtDialogs::editResponse(const std::string& actor, const std::string& topic,
                                    const std::string& text) {
    FrmInfo form(actor, topic, text, owner_, spelling_ ? spelling_() : nullptr);
    form.exec();
    return form.text();
}

LoopFix QtDialogs::fixLoop(const std::string& actor, const std::string& topic, const std::string& text,
                           const std::string& result, std::int32_t choice) {
    FrmInfo2 form(actor, topic, text, result, choice, owner_);
    form.exec();
    return {form.status(), form.text(), form.result()};
}

void QtDialogs::editOptions(CleanupSettings& settings) {
    FrmOptions form(settings);
    form.exec();
}

DamageChoice QtDialogs::damagedOutput(const DamageReport& report) {
    QMessageBox box(owner_);
    box.setWindowTitle(titleOf(""));
    box.setIcon(QMessageBox::Warning);
    box.setText(shown(damageQuestion(report)));
    QPushButton* repair =
        report.repairable ? box.addButton(QStringLiteral("&Repair"), QMessageBox::AcceptRole) : nullptr;
    QPushButton* asIs = box.addButton(QStringLiteral("Write &As Is"), QMessageBox::DestructiveRole);
    QPushButton* cancel = box.addButton(QMessageBox::Cancel);
    // Enter and Escape both write nothing.
    box.setDefaultButton(cancel);
    box.setEscapeButton(cancel);
    box.exec();
    if (repair && box.clickedButton() == repair) return DamageChoice::Repair;
    if (box.clickedButton() == asIs) return DamageChoice::WriteAsIs;
    return DamageChoice::WriteNothing;
}

void QtDialogs::showFindings(const std::vector<Finding>& findings,
                             const std::function<std::string(std::size_t)>& edit) {
    auto addWord = [this](const std::string& word) {
        std::string error = addPersonalWord(word);
        if (SpellChecker* checker = spelling_ ? spelling_() : nullptr; error.empty() && checker)
            checker->accept(word);
        return error;
    };
    FrmCheck form(findings, edit, addWord, owner_);
    form.exec();
}

void QtDialogs::about() {
    FrmAbout form(owner_);
    form.exec();
}

} // namespace quillon
