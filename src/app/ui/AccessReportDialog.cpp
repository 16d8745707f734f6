#include "app/ui/AccessReportDialog.h"

#include "app/ui/Icons.h"
#include "platform/ReplaceFile.h"

#include <QClipboard>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace app {

using namespace Qt::StringLiterals;

AccessReportDialog::AccessReportDialog(const QString& report, platform::Dialogues& dialogues, QWidget* parent)
    : QDialog(parent), m_report(report), m_dialogues(dialogues)
{
    setObjectName(u"accessReport"_s);
    setWindowTitle(u"Rapport d'importation"_s);
    setAttribute(Qt::WA_DeleteOnClose);
    auto* text = new QPlainTextEdit(report, this);
    text->setObjectName(u"accessReportText"_s);
    text->setAccessibleName(u"Rapport d'importation"_s);
    text->setReadOnly(true);
    text->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff); // lines are wrapped
    text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    auto* keep = buttons->addButton(u"&Enregistrer…"_s, QDialogButtonBox::ActionRole);
    keep->setObjectName(u"accessReportSave"_s);
    auto* copy = buttons->addButton(u"&Copier"_s, QDialogButtonBox::ActionRole);
    copy->setObjectName(u"accessReportCopy"_s);
    connect(keep, &QPushButton::clicked, this, &AccessReportDialog::save);
    connect(copy, &QPushButton::clicked, this, [this] { QGuiApplication::clipboard()->setText(m_report); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addWidget(buttons);
    resize(fontMetrics().averageCharWidth() * 100, fontMetrics().lineSpacing() * 32);
    buttons->button(QDialogButtonBox::Close)->setFocus();
}

void AccessReportDialog::save()
{
    const QString path = m_dialogues.saveFile(u"Enregistrer le rapport"_s, u"Textes (*.txt)|*.txt|"_s,
                                              u"Rapport d'importation.txt"_s);
    if (path.isEmpty())
        return;
    const QString error = platform::replaceFile(path, m_report.toUtf8() + '\n');
    if (!error.isEmpty())
        m_dialogues.tell(u"Le rapport n'a pas pu être enregistré : %1."_s.arg(error), windowTitle(),
                         platform::BoxIcon::Stop);
}

} // namespace app
