#include "dialogue/frm_info2.h"

#include "app/text.h"
#include "qt_text/code_page.h"
#include "qt_text/form_text.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace quillon {

namespace {

QPushButton* button(const char* caption, const char* name) {
    auto* b = new QPushButton(QString::fromLatin1(caption));
    b->setObjectName(name);
    return b;
}

} // namespace

FrmInfo2::FrmInfo2(const std::string& actor, const std::string& topic, const std::string& text,
                   const std::string& result, std::int32_t choice, QWidget* parent)
    : QDialog(parent), text_(text), result_(result) {
    setWindowTitle(QStringLiteral("Quillon"));
    txtINFO = new QPlainTextEdit(toEditor(text));
    txtINFO->setObjectName("txtINFO");
    txtResult = new QPlainTextEdit(toEditor(result));
    txtResult->setObjectName("txtResult");
    lblChoice = new QLabel(QStringLiteral("Choice: %1").arg(choice));
    lblChoice->setObjectName("lblChoice");
    lblTopic = new QLabel(QStringLiteral("Topic: ") + fromCodePage(topic));
    lblTopic->setObjectName("lblTopic");
    lblActor = new QLabel(QStringLiteral("Actor: ") + fromCodePage(properCase(actor)));
    lblActor->setObjectName("lblActor");
    cmdAccept = button("&Accept", "cmdAccept");
    cmdCancel = button("&Cancel", "cmdCancel");
    cmdSkip = button("&Skip", "cmdSkip");

    auto* labels = new QHBoxLayout;
    labels->addWidget(lblActor);
    labels->addWidget(lblTopic);
    labels->addWidget(lblChoice);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    for (QPushButton* b : {cmdAccept, cmdSkip, cmdCancel})
        buttons->addWidget(b);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(labels);
    layout->addWidget(new QLabel(QStringLiteral("Response:")));
    layout->addWidget(txtINFO);
    layout->addWidget(new QLabel(QStringLiteral("Result script:")));
    layout->addWidget(txtResult);
    layout->addLayout(buttons);
    resize(600, 420);

    connect(cmdAccept, &QPushButton::clicked, this, &FrmInfo2::acceptFix);
    connect(cmdCancel, &QPushButton::clicked, this, [this] { finish(LoopFixStatus::Cancel); });
    connect(cmdSkip, &QPushButton::clicked, this, [this] { finish(LoopFixStatus::Skip); });
}

void FrmInfo2::acceptFix() {
    std::optional<std::string> text = fromEditor(this, txtINFO->toPlainText());
    if (!text) return;
    std::optional<std::string> result = fromEditor(this, txtResult->toPlainText());
    if (!result) return;
    text_ = *text;
    result_ = *result;
    finish(LoopFixStatus::Accept);
}

void FrmInfo2::finish(LoopFixStatus status) {
    status_ = status;
    done(QDialog::Accepted);
}

} // namespace quillon
