#include "workbench/frm_check.h"

#include "app/text.h"
#include "qt_text/code_page.h"
#include "qt_text/form_text.h"
#include "workbench/check.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace quillon {

FrmCheck::FrmCheck(const std::vector<Finding>& findings, std::function<std::string(std::size_t)> edit,
                   std::function<std::string(const std::string&)> addWord, QWidget* parent)
    : QDialog(parent), findings_(findings), edit_(std::move(edit)), addWord_(std::move(addWord)),
      added_(findings.size(), false) {
    setWindowTitle(QStringLiteral("Check Dialogue"));
    setObjectName("frmCheck");
    cboKind = new QComboBox;
    cboKind->setObjectName("cboKind");
    cboKind->addItem(QStringLiteral("All kinds"));
    for (const char* kind : kFindingKinds)
        cboKind->addItem(QString::fromLatin1(kind));
    grdFindings = new QTableWidget(int(findings.size()), 5);
    grdFindings->setObjectName("grdFindings");
    grdFindings->setHorizontalHeaderLabels({"Kind", "ID", "Topic", "Actor", "Detail"});
    grdFindings->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grdFindings->setSelectionBehavior(QAbstractItemView::SelectRows);
    grdFindings->setSelectionMode(QAbstractItemView::SingleSelection);
    grdFindings->horizontalHeader()->setStretchLastSection(true);
    grdFindings->verticalHeader()->hide();
    for (int row = 0; row < int(findings.size()); ++row) {
        const Finding& f = findings[std::size_t(row)];
        QString cells[] = {QString::fromLatin1(f.kind.c_str()), fromCodePage(f.id), fromCodePage(f.topic),
                           fromCodePage(f.actor), fromCodePage(f.detail)};
        for (int column = 0; column < 5; ++column)
            grdFindings->setItem(row, column, new QTableWidgetItem(cells[column]));
    }
    grdFindings->resizeColumnsToContents();
    txtBefore = new QPlainTextEdit;
    txtBefore->setObjectName("txtBefore");
    txtAfter = new QPlainTextEdit;
    txtAfter->setObjectName("txtAfter");
    for (QPlainTextEdit* box : {txtBefore, txtAfter}) {
        box->setReadOnly(true);
        box->setMaximumHeight(90);
    }
    lblCount = new QLabel;
    lblCount->setObjectName("lblCount");
    auto* close = new QPushButton(QStringLiteral("&Close"));
    close->setObjectName("cmdClose");
    cmdAddWord = new QPushButton(QStringLiteral("Add to My &Words"));
    cmdAddWord->setObjectName("cmdAddWord");
    cmdAddWord->setToolTip(QStringLiteral("Take the selected finding's word as spelled right from now on, in "
                                          "every check (your word list)"));
    cmdAddWord->setEnabled(false);
    cmdAddWord->setVisible(bool(addWord_));

    auto* top = new QHBoxLayout;
    top->addWidget(new QLabel(QStringLiteral("Show:")));
    top->addWidget(cboKind);
    top->addStretch();
    top->addWidget(lblCount);
    auto* texts = new QHBoxLayout;
    texts->addWidget(txtBefore);
    texts->addWidget(txtAfter);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(new QLabel(QStringLiteral("Double-click a response to edit it.")));
    bottom->addStretch();
    bottom->addWidget(cmdAddWord);
    bottom->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(grdFindings, 1);
    layout->addLayout(texts);
    layout->addLayout(bottom);
    resize(860, 520);

    connect(cboKind, &QComboBox::currentIndexChanged, this, &FrmCheck::filter);
    connect(grdFindings, &QTableWidget::itemSelectionChanged, this, &FrmCheck::showSelected);
    connect(grdFindings, &QTableWidget::cellDoubleClicked, this, [this](int row, int) { editRow(row); });
    connect(close, &QPushButton::clicked, this, &FrmCheck::accept);
    connect(cmdAddWord, &QPushButton::clicked, this, &FrmCheck::addWord);
    filter();
}

void FrmCheck::filter() {
    int shown = 0;
    QString kind = cboKind->currentIndex() == 0 ? QString() : cboKind->currentText();
    for (int row = 0; row < grdFindings->rowCount(); ++row) {
        bool show =
            !added_[std::size_t(row)] && (kind.isEmpty() || grdFindings->item(row, 0)->text() == kind);
        grdFindings->setRowHidden(row, !show);
        shown += show;
    }
    lblCount->setText(QStringLiteral("%1 of %2 findings").arg(shown).arg(grdFindings->rowCount()));
}

void FrmCheck::showSelected() {
    QList<QTableWidgetItem*> selected = grdFindings->selectedItems();
    const Finding* f = selected.isEmpty() ? nullptr : &findings_[std::size_t(selected.front()->row())];
    cmdAddWord->setEnabled(f && f->kind == "spelling" && !f->word.empty());
    txtBefore->setPlainText(f && f->kind == "style" ? QStringLiteral("Before:\n") + toEditor(f->before)
                                                    : QString());
    txtAfter->setPlainText(
        f && f->kind == "style" ? QStringLiteral("After the clean-up:\n") + toEditor(f->after) : QString());
}

void FrmCheck::addWord() {
    QList<QTableWidgetItem*> selected = grdFindings->selectedItems();
    if (selected.isEmpty() || !addWord_) return;
    std::string word = findings_[std::size_t(selected.front()->row())].word;
    if (std::string error = addWord_(word); !error.empty()) {
        QMessageBox::warning(this, QStringLiteral("Quillon"), fromCodePage(error + "."));
        return;
    }
    for (std::size_t i = 0; i < findings_.size(); ++i)
        if (findings_[i].kind == "spelling" && equalsIgnoreCase(findings_[i].word, word)) added_[i] = true;
    grdFindings->clearSelection();
    filter();
}

void FrmCheck::editRow(int row) {
    const Finding& f = findings_[std::size_t(row)];
    if (f.record != "INFO" || f.kind == "master") return;
    std::string text = edit_(std::size_t(row));
    txtBefore->setPlainText(QStringLiteral("Now:\n") + toEditor(text));
}

} // namespace quillon
