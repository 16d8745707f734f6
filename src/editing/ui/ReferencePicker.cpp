#include "editing/ui/ReferencePicker.h"

#include "data/FieldType.h"
#include "editing/Trapped.h"

#include <QAbstractItemView>
#include <QHBoxLayout>

namespace editing {

using namespace Qt::StringLiterals;

namespace {

constexpr int idRole = Qt::UserRole;
constexpr int nameRole = Qt::UserRole + 1;

QString hint(int type)
{
    switch (type) {
    case data::Botaniste:
        return u"Nom ou initiales"_s;
    case data::Localité:
        return u"Début du nom de la localité"_s;
    default:
        return u"Début du nom du taxon"_s;
    }
}

} // namespace

ReferencePicker::ReferencePicker(Cl_Edition& parent, const ControlWorld& world, QWidget* owner)
    : FieldControl(parent, world, owner), m_line(new EntryLine(this)), m_completer(new QCompleter(this)),
      m_matches(new QStandardItemModel(this))
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_line);
    watch(m_line);
    m_line->setPlaceholderText(hint(parent.ctype()));
    m_line->addAction(QIcon::fromTheme(u"edit-find"_s), QLineEdit::TrailingPosition)->setObjectName(u"loupe"_s);
    // While the list is open, keys come from the list and no filter sees them.
    m_line->onKey = [this](QKeyEvent* event) {
        const bool listed = m_completer->popup()->isVisible();
        if (listed && (event->key() == Qt::Key_Escape))
            return false;
        return listed && handleKey(event);
    };
    m_completer->setModel(m_matches);
    m_completer->setWidget(m_line);
    m_completer->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    m_completer->setMaxVisibleItems(15);
    m_completer->popup()->setObjectName(u"noms-"_s + parent.champ());
    m_completer->popup()->setAccessibleName(u"Noms trouvés"_s);
    connect(m_completer, qOverload<const QModelIndex&>(&QCompleter::activated), this, &ReferencePicker::choose);
    connect(m_line, &QLineEdit::textEdited, this, &ReferencePicker::typed);
    Refresh();
}

void ReferencePicker::Refresh()
{
    if (!ClParent())
        return;
    const QVariant value = ClParent()->value();
    m_pending = value.isValid() && FieldInput::isRaw(*ClParent());
    m_line->setText(!value.isValid() ? QString() : m_pending ? value.toString() : ClParent()->TextValue());
    m_line->setCursorPosition(0);
}

void ReferencePicker::setReadOnly(bool readOnly)
{
    m_line->setReadOnly(readOnly);
    m_line->setPlaceholderText(readOnly ? QString() : hint(ClParent()->ctype()));
}

void ReferencePicker::typed(const QString& text)
{
    m_pending = !text.trimmed().isEmpty();
    edit(text);
    if (m_pending)
        showMatches(text);
    else
        m_completer->popup()->hide();
}

void ReferencePicker::showMatches(const QString& text)
{
    if (!world().search || !ClParent())
        return;
    const auto found = trapped("names", QList<ReferenceMatch>(),
                               [&] { return world().search->matches(ClParent()->ctype(), text); });
    m_matches->clear();
    for (const ReferenceMatch& match : found) {
        auto* item = new QStandardItem(match.detail.isEmpty() ? match.name : match.name + u"   "_s + match.detail);
        item->setData(match.id, idRole);
        item->setData(match.name, nameRole);
        m_matches->appendRow(item);
    }
    if (found.isEmpty())
        return m_completer->popup()->hide();
    m_completer->complete();
    m_completer->popup()->setCurrentIndex(m_completer->completionModel()->index(0, 0));
}

void ReferencePicker::choose(const QModelIndex& index)
{
    if (!index.isValid() || !ClParent())
        return;
    m_pending = false;
    edit(index.data(idRole).toInt());
    Refresh();
}

/// Takes the name that is highlighted; without a list, the one that was typed whole.
void ReferencePicker::finish()
{
    if (!m_pending || m_line->isReadOnly())
        return;
    QAbstractItemView* list = m_completer->popup();
    if (list->isVisible()) {
        const QModelIndex chosen = list->currentIndex();
        list->hide();
        choose(chosen.isValid() ? chosen : m_completer->completionModel()->index(0, 0));
        return;
    }
    if (!world().search || !ClParent())
        return;
    const QString text = m_line->text().trimmed();
    const auto found = trapped("names", QList<ReferenceMatch>(),
                               [&] { return world().search->matches(ClParent()->ctype(), text); });
    const auto whole = std::find_if(found.begin(), found.end(), [&](const ReferenceMatch& match) {
        return match.name.compare(text, Qt::CaseInsensitive) == 0;
    });
    if (whole == found.end() && found.size() != 1)
        return; // stays as typed, with its error
    m_pending = false;
    edit(whole == found.end() ? found.first().id : whole->id);
    Refresh();
}

void ReferencePicker::openList()
{
    if (!m_line->isReadOnly())
        showMatches(m_pending ? m_line->text() : QString());
}

} // namespace editing
