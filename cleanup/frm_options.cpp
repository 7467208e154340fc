#include "cleanup/frm_options.h"

#include "cleanup/text_rules.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace quillon {

namespace {

QCheckBox* box(const char* name, const char* caption, const char* tip, bool value) {
    auto* b = new QCheckBox(QString::fromLatin1(caption));
    b->setObjectName(name);
    b->setToolTip(QString::fromLatin1(tip));
    b->setChecked(value);
    return b;
}

} // namespace

FrmOptions::FrmOptions(CleanupSettings& s, QWidget* parent) : QDialog(parent), settings_(s) {
    setWindowTitle(QStringLiteral("Quillon Options"));
    chkLines = box("chkLines", "Remove Line Breaks", "Replace line breaks with spaces.", s.isLineBreaks);
    chkAmerican =
        box("chkAmerican", "Use American Spelling",
            "Replace British spelling with American for consistency with original Morrowind.", s.isAmerican);
    // "Capiotalize" is the tool tip's own spelling.
    chkCap = box("chkCap", "Capitalize New Sentences", "Capiotalize the first letter in every new sentence.",
                 s.isSentences);
    chkQuotes =
        box("chkQuotes", "Fix Quotes Spaces",
            "Remove spaces after the beginning quote and before the finishing quote. This function is still "
            "a BETA.",
            s.isSpaceQuotes);
    chkSlang = box("chkSlang", "Remove Slang",
                   "Replace slang and swearing with words closer to morrowind style.", s.isSlang);
    chkTemple =
        box("chkTemple", "Capitalize \"Temple\"",
            "Capitalize the word \"Temple\", as is done in Morrowind.ESM. Should be avoided for example when "
            "someone in your dialogue is referring to a non-dunmer temple.",
            s.isTemple);
    chkDash = box("chkDash", "Force Single Dashes",
                  "Replace double dashes(m-dashes) with single ones(n-dashes).", s.isDashes);
    chkEllipsis = box("chkEllipsis", "Capitalize After Ellipsis",
                      "Capitalize the first letter after an ellipsis.", s.isEllipsis);
    chkSquare =
        box("chkSquare", "Force Square Brackets",
            "Replace \"()\" and \"{}\" with \"[]\", for consistency with original Morrowind.", s.isSquare);
    chkDashSpacing =
        box("chkDashSpacing", "Force Spaced Dashes", "Wrap dashes(not hyphens) with spaces.", s.isDashSpaces);
    cmdOptOk = new QPushButton(QStringLiteral("OK"));
    cmdOptOk->setObjectName("cmdOptOk");
    cmdOptOk->setToolTip(QStringLiteral("Accept changes."));
    cmdOptCancel = new QPushButton(QStringLiteral("Cancel"));
    cmdOptCancel->setObjectName("cmdOptCancel");
    cmdOptCancel->setToolTip(QStringLiteral("Cancel changes."));

    auto* layout = new QVBoxLayout(this);
    for (QCheckBox* b : {chkLines, chkAmerican, chkCap, chkEllipsis, chkQuotes, chkSlang, chkTemple, chkDash,
                         chkDashSpacing, chkSquare})
        layout->addWidget(b);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOptOk);
    buttons->addWidget(cmdOptCancel);
    layout->addLayout(buttons);

    // Only a click on "Capitalize New Sentences" ties the ellipsis box to it; loading does not.
    connect(chkCap, &QCheckBox::clicked, this, &FrmOptions::capClicked);
    connect(cmdOptOk, &QPushButton::clicked, this, &FrmOptions::ok);
    connect(cmdOptCancel, &QPushButton::clicked, this, &FrmOptions::reject);
}

void FrmOptions::capClicked() {
    bool checked = chkEllipsis->isChecked(), enabled = chkEllipsis->isEnabled();
    onCapitalizeSentencesClicked(chkCap->isChecked(), checked, enabled);
    chkEllipsis->setChecked(checked);
    chkEllipsis->setEnabled(enabled);
}

void FrmOptions::ok() {
    CleanupSettings& s = settings_;
    s.isLineBreaks = chkLines->isChecked();
    s.isAmerican = chkAmerican->isChecked();
    s.isSlang = chkSlang->isChecked();
    s.isDashes = chkDash->isChecked();
    s.isSentences = chkCap->isChecked();
    s.isEllipsis = chkEllipsis->isChecked();
    s.isDashSpaces = chkDashSpacing->isChecked();
    s.isSquare = chkSquare->isChecked();
    s.isTemple = chkTemple->isChecked();
    s.isSpaceQuotes = chkQuotes->isChecked();
    accept();
}

} // namespace quillon
