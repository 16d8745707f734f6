#include "app/ui/structure/ReviewDialog.h"

#include "app/ui/Icons.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QVBoxLayout>

namespace app {

using namespace Qt::StringLiterals;

namespace {

constexpr int findingRole = Qt::UserRole + 1;

QLabel* textLabel(const QString& text, QWidget* owner)
{
    auto* label = new QLabel(text, owner);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

} // namespace

ReviewDialog::ReviewDialog(const StructureReview& review, const QString& title, const QString& copy, QWidget* parent)
    : QDialog(parent), m_review(review), m_list(new QTreeWidget(this)), m_show(new QPushButton(this))
{
    setObjectName(u"apercuStructure"_s);
    setWindowTitle(title);
    resize(900, 480);
    auto* layout = new QVBoxLayout(this);
    const bool forbids = review.forbids();
    layout->addWidget(textLabel(forbids ? u"La structure ne peut pas être enregistrée : des enregistrements ne respectent pas "
                                          "les nouvelles règles.\nCorrigez-les, ou retirez ces règles."_s
                                        : u"L'enregistrement de la structure modifie des données :"_s,
                                this));
    m_list->setObjectName(u"constats"_s);
    m_list->setAccessibleName(u"Effets sur les enregistrements"_s);
    m_list->setHeaderLabels({u"Constat"_s, u"Valeur"_s, u"Devient"_s});
    m_list->setUniformRowHeights(true);
    layout->addWidget(m_list, 1);
    fill();
    if (!forbids && review.losesData())
        layout->addWidget(textLabel(u"Une copie du projet sera faite auparavant : "_s + copy, this));
    auto* buttons = new QDialogButtonBox(this);
    m_show->setText(u"&Afficher les enregistrements"_s);
    m_show->setObjectName(u"afficher"_s);
    buttons->addButton(m_show, QDialogButtonBox::ActionRole);
    if (!forbids) {
        QPushButton* save = buttons->addButton(u"&Enregistrer"_s, QDialogButtonBox::AcceptRole);
        save->setObjectName(u"enregistrer"_s);
        save->setAutoDefault(false);
    }
    QPushButton* cancel = buttons->addButton(forbids ? u"&Fermer"_s : u"A&nnuler"_s, QDialogButtonBox::RejectRole);
    cancel->setObjectName(u"annuler"_s);
    cancel->setDefault(true); // what cannot be undone is not one key away
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_show, &QPushButton::clicked, this, &ReviewDialog::showRecords);
    connect(m_list, &QTreeWidget::currentItemChanged, this, &ReviewDialog::updateButtons);
    m_list->setCurrentItem(m_list->topLevelItem(0));
    updateButtons();
}

void ReviewDialog::fill()
{
    for (qsizetype at = 0; at < m_review.findings.size(); ++at) {
        const Finding& finding = m_review.findings[at];
        auto* item = new QTreeWidgetItem(m_list, {finding.text()});
        item->setFirstColumnSpanned(true);
        item->setIcon(0, themeIcon(finding.forbids() ? u"dialog-error"_s : u"dialog-warning"_s));
        item->setToolTip(0, finding.text());
        item->setData(0, findingRole, at);
        for (const Finding::Example& example : finding.examples) {
            const bool gone = finding.kind == Finding::Unconverted;
            auto* line = new QTreeWidgetItem(item, {u"Enregistrement %1"_s.arg(example.record), example.value,
                                                    gone ? u"(vide)"_s : example.becomes});
            line->setData(0, findingRole, at);
        }
        if (finding.count > finding.examples.size() && !finding.examples.isEmpty())
            new QTreeWidgetItem(item, {u"… et %1 autre(s)"_s.arg(finding.count - finding.examples.size())});
        item->setExpanded(at == 0);
    }
    const auto addTexts = [this](const QStringList& texts, const QString& icon, const QString& what) {
        for (const QString& text : texts) {
            auto* item = new QTreeWidgetItem(m_list, {what + text});
            item->setFirstColumnSpanned(true);
            item->setIcon(0, themeIcon(icon));
            item->setToolTip(0, what + text);
        }
    };
    addTexts(m_review.conversions, u"view-refresh"_s, u"Conversion : "_s);
    addTexts(m_review.losses, u"edit-delete"_s, u"Suppression : "_s);
    m_list->header()->resizeSection(0, 300);
    m_list->header()->resizeSection(1, 200);
}

void ReviewDialog::updateButtons()
{
    const QTreeWidgetItem* item = m_list->currentItem();
    const QVariant at = item ? item->data(0, findingRole) : QVariant();
    m_show->setEnabled(at.isValid() && !m_review.findings[at.toInt()].examples.isEmpty());
}

void ReviewDialog::showRecords()
{
    const QTreeWidgetItem* item = m_list->currentItem();
    const QVariant at = item ? item->data(0, findingRole) : QVariant();
    if (!at.isValid())
        return;
    const Finding& finding = m_review.findings[at.toInt()];
    const QString title = finding.field.isEmpty() ? finding.module : finding.module + u" - "_s + finding.field;
    Q_EMIT recordsWanted(title, finding.module, finding.records());
    reject();
}

} // namespace app
