#include "dialogue/frm_info.h"

#include "app/text.h"
#include "qt_text/code_page.h"
#include "qt_text/form_text.h"
#include "workbench/frm_spelling.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace quillon {

FrmInfo::FrmInfo(const std::string& actor, const std::string& topic, const std::string& text, QWidget* parent,
                 SpellChecker* spelling)
    : QDialog(parent), text_(text) {
    setWindowTitle(QStringLiteral("Quillon"));
    txtINFO = new QPlainTextEdit(toEditor(text));
    txtINFO->setObjectName("txtINFO");
    lblTopic = new QLabel(QStringLiteral("Topic: ") + fromCodePage(topic));
    lblTopic->setObjectName("lblTopic");
    lblActor =
        new QLabel(actor == "Journal Entry" ? QStringLiteral("Journal Entry")
                                            : QStringLiteral("Actor: ") + fromCodePage(properCase(actor)));
    lblActor->setObjectName("lblActor");
    lblLength = new QLabel;
    lblLength->setObjectName("lblLength");
    cmdAccept = new QPushButton(QStringLiteral("&Accept"));
    cmdAccept->setObjectName("cmdAccept");
    cmdCancel = new QPushButton(QStringLiteral("&Cancel"));
    cmdCancel->setObjectName("cmdCancel");

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(lblLength);
    buttons->addStretch();
    buttons->addWidget(cmdAccept);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblTopic);
    layout->addWidget(lblActor);
    layout->addWidget(txtINFO);
    layout->addLayout(buttons);
    resize(560, 320);

    if (spelling) new SpellingHighlighter(txtINFO, *spelling);
    connect(txtINFO, &QPlainTextEdit::textChanged, this, &FrmInfo::showLength);
    connect(cmdAccept, &QPushButton::clicked, this, &FrmInfo::accept);
    connect(cmdCancel, &QPushButton::clicked, this, &FrmInfo::reject);
    showLength();
}

void FrmInfo::showLength() {
    int length = fileLength(txtINFO->toPlainText());
    lblLength->setText(QStringLiteral("Length: %1").arg(length));
    cmdAccept->setEnabled(length < 513);
}

void FrmInfo::accept() {
    std::optional<std::string> bytes = fromEditor(this, txtINFO->toPlainText());
    if (!bytes) return;
    text_ = *bytes;
    QDialog::accept();
}

} // namespace quillon
