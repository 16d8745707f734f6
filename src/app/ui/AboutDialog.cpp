#include "app/ui/AboutDialog.h"

#include "app/ui/Icons.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace app {

using namespace Qt::StringLiterals;

AboutDialog::AboutDialog(const QString& version, QWidget* parent) : QDialog(parent)
{
    setObjectName(u"aboutDialog"_s);
    setWindowTitle(u"À propos de Herbora"_s);
    setAttribute(Qt::WA_DeleteOnClose);
    auto* picture = new QLabel(this);
    picture->setPixmap(programIcon().pixmap(64, 64));
    auto* text = new QLabel(u"<h2>Herbora %1</h2>"
                            "<p>Saisir et interroger les données de terrain et d'herbier :<br>"
                            "individus, déterminations, taxons, localités, images.</p>"
                            "<p>Réalisé avec Qt %2.</p>"_s.arg(version.toHtmlEscaped(), QLatin1StringView(qVersion())),
                            this);
    text->setObjectName(u"aboutText"_s);
    text->setTextInteractionFlags(Qt::TextBrowserInteraction);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* head = new QHBoxLayout;
    head->setSpacing(16);
    head->addWidget(picture, 0, Qt::AlignTop);
    head->addWidget(text, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(head);
    layout->addWidget(buttons);
}

} // namespace app
