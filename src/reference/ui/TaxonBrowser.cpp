#include "reference/ui/TaxonBrowser.h"

#include "platform/ui/Keyboard.h"
#include "reference/ui/ReferenceWorld.h"

#include <QHeaderView>

namespace reference {

using namespace Qt::StringLiterals;

namespace {

constexpr int mostLines = 6; ///< Of the list of synonyms; longer ones scroll.

} // namespace

TaxonBrowser::TaxonBrowser(std::shared_ptr<ReferenceWorld> world, QWidget* parent)
    : ReferenceBrowser(world, parent), m_tree(new Taxons(world, this)), m_panel(new QWidget(this)),
      m_synonyms(new QTreeWidget(m_panel)), m_edit(new QToolButton(m_panel)), m_delete(new QToolButton(m_panel))
{
    m_synonyms->setObjectName(u"synonymes"_s);
    m_synonyms->setAccessibleName(u"Synonymes"_s);
    m_synonyms->setHeaderLabels({u"Synonymes"_s, u"Date"_s, u"Auteur(s)"_s});
    m_synonyms->setRootIsDecorated(false);
    m_synonyms->setUniformRowHeights(true);
    const auto button = [this](QToolButton* made, const QString& name, const QString& icon, const QString& tip,
                               bool (Cl_Taxon::*run)(qint32)) {
        made->setObjectName(name);
        made->setIcon(QIcon::fromTheme(icon));
        made->setToolTip(tip);
        made->setAccessibleName(tip);
        connect(made, &QToolButton::clicked, this, [this, run] { onSynonym(run); });
    };
    button(m_edit, u"clSynonyme_Edit"_s, u"document-edit"_s, u"Modifier la synonymie"_s, &Cl_Taxon::clSynonyme_Edit);
    button(m_delete, u"clSynonyme_Delete"_s, u"edit-delete"_s, u"Supprimer la synonymie"_s, &Cl_Taxon::clSynonyme_Delete);
    auto* commands = new QVBoxLayout;
    commands->addWidget(m_edit);
    commands->addWidget(m_delete);
    commands->addStretch(1);
    auto* layout = new QHBoxLayout(m_panel);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_synonyms, 1);
    layout->addLayout(commands);
    connect(m_synonyms, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem* item) {
        showRow(item->data(0, Qt::UserRole).toInt());
    });
    const auto enable = [this] {
        const bool possible = m_synonyms->currentItem() && !this->world().readOnly;
        m_edit->setEnabled(possible);
        m_delete->setEnabled(possible);
    };
    connect(m_synonyms, &QTreeWidget::currentItemChanged, this, enable);
    enable();
    form().setExtra(m_panel);
    m_panel->hide();
    arrange(m_tree, m_tree, u"Lstaxons"_s);
    platform::tabAlong({&form().pane(), m_synonyms, m_edit, m_delete});
    // A name that became, or is no more, a synonym changes the list of the one that is shown.
    connect(&world->taxa, &ReferenceList::Change, this, [this] {
        this->world().whenHere(this, [this] {
            if (shown() > 0)
                fillSynonyms(shown());
        });
    });
}

QString TaxonBrowser::titleOf(qint32 id) const
{
    return world().taxa.NomTaxon(id, 0) + u" ("_s + Cl_Taxon::Ordre(world().taxa.OrdreTaxon(id)) + u')';
}

void TaxonBrowser::showForm(qint32 id)
{
    Cl_Taxon& taxa = world().taxa;
    auto fields = std::make_unique<editing::Cl_Editions>(world().context);
    const QString title = taxa.FillTabEdit(*fields, id, taxa.IDparent(id));
    QStringList hidden{fieldSynonyms};
    if (taxa.IDValid(id, false) <= 0)
        hidden << u"ID Valid"_s;
    form().show(title, std::move(fields), [this, id](editing::Cl_Editions& typed) {
        world().taxa.setIDctaxon(id);
        return world().taxa.Save(typed);
    }, hidden);
    fillSynonyms(id);
}

void TaxonBrowser::fillSynonyms(qint32 id)
{
    m_synonyms->clear();
    try {
        const QString statement = world().taxa.SQLSynonymes(id);
        const auto rows = statement.isEmpty() ? nullptr : world().database.OpenRecordset(statement, jet::RecordsetType::Snapshot);
        for (; rows && !rows->EOF_(); rows->MoveNext()) {
            auto* item = new QTreeWidgetItem(m_synonyms, {rows->Value(0).toString().trimmed(), rows->Value(1).toString(),
                                                          rows->Value(2).toString()});
            item->setData(0, Qt::UserRole, rows->Value(3).toInt());
        }
    } catch (const jet::Error& error) {
        world().dialogues.tell(error.description(), title(), platform::BoxIcon::Stop);
    }
    const int lines = m_synonyms->topLevelItemCount();
    m_panel->setVisible(lines > 0 && form().isShown());
    m_synonyms->resizeColumnToContents(0);
    m_synonyms->setFixedHeight((std::clamp(lines, 2, mostLines) + 2) * (m_synonyms->fontMetrics().height() + 4));
}

void TaxonBrowser::onSynonym(bool (Cl_Taxon::*run)(qint32))
{
    QTreeWidgetItem* item = m_synonyms->currentItem();
    if (!item)
        return;
    const qint32 id = item->data(0, Qt::UserRole).toInt();
    world().whenHere(this, [this, run, id] {
        if (form().mayLeave() && (world().taxa.*run)(id))
            world().written(u"Taxons"_s);
    });
}

} // namespace reference
