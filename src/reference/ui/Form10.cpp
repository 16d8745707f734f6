#include "reference/ui/Form10.h"

#include "reference/ui/ReferenceWorld.h"

#include <QLocale>

namespace reference {

using namespace Qt::StringLiterals;
using platform::TabCommand;

namespace {

constexpr int keyRole = Qt::UserRole + 1;
constexpr char16_t firstLetter = 65, lastLetter = 84; // "A" to "T"; what follows stands together
const QString noOrganisation = u"< Indéfini >"_s;

QStandardItem* node(const QString& text, const QString& key, const QIcon& icon)
{
    auto* item = new QStandardItem(icon, text);
    item->setData(key, keyRole);
    item->setEditable(false);
    return item;
}

QStandardItem* itemOf(QStandardItem* parent, const QString& key)
{
    for (int row = 0; row < parent->rowCount(); ++row) {
        QStandardItem* child = parent->child(row);
        if (child->data(keyRole).toString() == key)
            return child;
        if (QStandardItem* below = itemOf(child, key))
            return below;
    }
    return nullptr;
}

} // namespace

Form10::Form10(std::shared_ptr<ReferenceWorld> world, QWidget* parent)
    : ReferenceBrowser(world, parent), m_groups(new QTreeView(this)), m_nodes(new QStandardItemModel(this)),
      m_people(new Botaniste(world, this)), m_left(new QSplitter(this))
{
    m_groups->setObjectName(u"groupes"_s);
    m_groups->setAccessibleName(u"Initiales et organismes"_s);
    m_groups->setHeaderHidden(true);
    m_groups->setUniformRowHeights(true);
    m_groups->setModel(m_nodes);
    m_left->setObjectName(u"voletsGauche"_s);
    m_left->addWidget(m_groups);
    m_left->addWidget(m_people);
    m_left->setStretchFactor(1, 1);
    m_left->setChildrenCollapsible(false);
    m_left->setSizes({fontMetrics().averageCharWidth() * 22, fontMetrics().averageCharWidth() * 63});
    arrange(m_people, m_left, u"Lsbotanistes"_s);
    m_left->restoreState(world->remembered(key() + u"/groupes"_s).toByteArray());
    world->whenHere(this, [this] { fillGroups(); });
    connect(m_groups->selectionModel(), &QItemSelectionModel::currentChanged, this, &Form10::chooseGroup);
    m_people->everybodyListed = [this] {
        m_filling = true;
        m_groups->setCurrentIndex(groupOf(u"0-Col"_s));
        m_filling = false;
    };
    const auto again = [this] { this->world().whenHere(this, [this] { fillGroups(); }); };
    connect(&world->people, &ReferenceList::Refresh, this, again);
    connect(&world->people, &ReferenceList::Change, this, again, Qt::QueuedConnection); // once the form is done
}

Form10::~Form10()
{
    world().remember(key() + u"/groupes"_s, m_left->saveState());
}

void Form10::fillGroups()
{
    const QString current = m_groups->currentIndex().data(keyRole).toString();
    m_filling = true;
    m_nodes->clear();
    const QIcon icon = world().icon(u"Lsbotanistes"_s);
    QStandardItem* all = node(u"Collecteurs"_s, u"0-Col"_s, icon);
    m_nodes->appendRow(all);
    for (char16_t letter = firstLetter; letter <= lastLetter; ++letter)
        all->appendRow(node(QChar(letter), QChar(letter) + u"-Col"_s, icon));
    all->appendRow(node(u"[U-V]"_s, u"U-Col"_s, icon));
    all->appendRow(node(u"[W-Z]"_s, u"W-Col"_s, icon));
    const QIcon building = QIcon::fromTheme(u"view-institution"_s, QIcon::fromTheme(u"folder"_s));
    try {
        const auto rows = world().database.OpenRecordset(
            u"SELECT Collecteurs.Organisme From Collecteurs GROUP BY Collecteurs.Organisme"_s, jet::RecordsetType::Snapshot);
        for (; !rows->EOF_(); rows->MoveNext()) {
            const QString name = rows->Value(0).toString();
            m_nodes->appendRow(name.isEmpty() ? node(noOrganisation, u"0-Org"_s, building)
                                              : node(name, name + u"-Org"_s, building));
        }
    } catch (const jet::Error& error) {
        world().dialogues.tell(error.description(), title(), platform::BoxIcon::Stop);
    }
    m_groups->expand(all->index());
    const QModelIndex again = groupOf(current);
    m_groups->setCurrentIndex(again.isValid() ? again : all->index());
    m_filling = false;
    if (!again.isValid())
        chooseGroup();
}

QModelIndex Form10::groupOf(const QString& key) const
{
    const QStandardItem* item = itemOf(m_nodes->invisibleRootItem(), key);
    return item ? item->index() : QModelIndex();
}

void Form10::chooseGroup()
{
    if (m_filling)
        return;
    world().whenHere(this, [this] {
        const QModelIndex index = m_groups->currentIndex();
        const QString key = index.data(keyRole).toString();
        const QString text = index.data().toString();
        CollectorFilter filter;
        if (key.endsWith(u"-Org"))
            filter = {CollectorFilter::Organisation, key == u"0-Org" ? QString() : text};
        else if (key != u"0-Col" && !key.isEmpty())
            filter = {CollectorFilter::Letter, text};
        m_people->setFilter(filter);
        Q_EMIT stateChanged();
    });
}

void Form10::showForm(qint32 id)
{
    auto fields = std::make_unique<editing::Cl_Editions>(world().context);
    world().people.FillTabEdit(*fields, id);
    form().show(titleOf(id), std::move(fields), [this, id](editing::Cl_Editions& typed) {
        world().people.setIDcBotaniste(id);
        return world().people.Save(typed);
    });
}

void Form10::noteSaved()
{
    const qint32 saved = shown();
    fillGroups(); // the organisation may be a new one
    if (m_people->currentId() != saved)
        m_people->showRow(saved); // it left the group
}

QString Form10::statusText() const
{
    return u"Sel. "_s + QLocale().toString(m_people->selectedIds().size()) + u"   "_s + QLocale().toString(m_people->model().count())
           + u" botaniste(s)"_s;
}

bool Form10::can(TabCommand command) const
{
    return command == TabCommand::SelectAll || command == TabCommand::FitColumns || command == TabCommand::ExportRows
           || ReferenceBrowser::can(command);
}

void Form10::run(TabCommand command)
{
    switch (command) {
    case TabCommand::SelectAll:
    case TabCommand::ExportRows:
        world().whenHere(this, [this, command] {
            while (m_people->model().canFetchMore({}))
                m_people->model().fetchMore({});
            if (command == TabCommand::SelectAll)
                m_people->clMsFlexGrid().SelectAll();
            else
                m_people->clMsFlexGrid().ExportCSV(world().dialogues);
        });
        break;
    case TabCommand::FitColumns:
        m_people->clMsFlexGrid().AjustColWidth();
        break;
    default:
        ReferenceBrowser::run(command);
    }
}

} // namespace reference
