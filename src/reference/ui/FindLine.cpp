#include "reference/ui/FindLine.h"

#include "editing/Trapped.h"
#include "reference/ui/ReferenceWorld.h"

#include <QAbstractItemView>

namespace reference {

using namespace Qt::StringLiterals;

FindLine::FindLine(std::shared_ptr<ReferenceWorld> world, int type, QWidget* parent)
    : EntryLine(parent), m_world(std::move(world)), m_type(type), m_completer(new QCompleter(this)),
      m_matches(new QStandardItemModel(this))
{
    setObjectName(u"find"_s);
    setAccessibleName(u"Rechercher"_s);
    setPlaceholderText(type == data::Botaniste ? u"Rechercher un nom ou des initiales"_s : u"Rechercher le début d'un nom"_s);
    setClearButtonEnabled(true);
    addAction(QIcon::fromTheme(u"edit-find"_s), LeadingPosition);
    m_completer->setModel(m_matches);
    m_completer->setWidget(this);
    m_completer->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    m_completer->setMaxVisibleItems(15);
    m_completer->popup()->setObjectName(u"trouves"_s);
    m_completer->popup()->setAccessibleName(u"Noms trouvés"_s);
    connect(m_completer, qOverload<const QModelIndex&>(&QCompleter::activated), this, &FindLine::take);
    connect(this, &QLineEdit::textEdited, this, &FindLine::showMatches);
    onKey = [this](QKeyEvent* event) { return handle(event); };
}

void FindLine::find(const QString& text)
{
    setText(text);
    showMatches();
}

void FindLine::showMatches()
{
    m_matches->clear();
    if (text().trimmed().isEmpty() || m_world->isAway())
        return m_completer->popup()->hide();
    const auto rows = editing::trapped("find", QList<editing::ReferenceMatch>(),
                                       [&] { return m_world->search.matches(m_type, text()); });
    for (const editing::ReferenceMatch& match : rows) {
        auto* item = new QStandardItem(match.detail.isEmpty() ? match.name : match.name + u"   "_s + match.detail);
        item->setData(match.id, Qt::UserRole);
        m_matches->appendRow(item);
    }
    if (rows.isEmpty())
        return m_completer->popup()->hide();
    m_completer->complete();
    m_completer->popup()->setCurrentIndex(m_completer->completionModel()->index(0, 0));
}

bool FindLine::handle(QKeyEvent* event)
{
    QAbstractItemView* list = m_completer->popup();
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (!list->isVisible())
            showMatches();
        if (m_matches->rowCount() > 0) {
            const QModelIndex chosen = list->currentIndex();
            list->hide();
            take(chosen.isValid() ? chosen : m_completer->completionModel()->index(0, 0));
        }
        return true;
    case Qt::Key_Escape:
        if (list->isVisible()) {
            list->hide();
            return true;
        }
        if (text().isEmpty())
            return false;
        clear();
        Q_EMIT givenUp();
        return true;
    default:
        return false;
    }
}

void FindLine::take(const QModelIndex& index)
{
    if (index.isValid())
        Q_EMIT found(index.data(Qt::UserRole).toInt());
}

} // namespace reference
