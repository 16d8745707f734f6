#include "editing/ui/ReferencePicker.h"

#include "data/FieldType.h"
#include "editing/Trapped.h"
#include "editing/ui/ReferenceChooser.h"

#include <QAbstractItemView>
#include <QHBoxLayout>
#include <QPointer>

namespace editing {

using namespace Qt::StringLiterals;

namespace {

constexpr int idRole = Qt::UserRole;
constexpr int nameRole = Qt::UserRole + 1;
constexpr int rowMargin = 8;
constexpr int addsNew = -1; ///< Stands for an identifier in the line that adds a name.

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
    QAction* glass = m_line->addAction(QIcon::fromTheme(u"edit-find"_s), QLineEdit::TrailingPosition);
    glass->setObjectName(u"loupe"_s);
    if (world.chooser)
        glass->setToolTip(u"Choisir dans la liste (F3)"_s);
    connect(glass, &QAction::triggered, this, &ReferencePicker::openChooser);
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
    shade(m_line, readOnly);
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
    if (world().chooser && m_pending) {
        auto* item = new QStandardItem(QIcon::fromTheme(u"list-add"_s), u"Ajouter « "_s + text.trimmed() + u" »…"_s);
        item->setData(addsNew, idRole);
        m_matches->appendRow(item);
    }
    // The list is as high as so many first rows, and the last one has a picture.
    const QSize row(0, m_line->fontMetrics().height() + rowMargin);
    for (int i = 0; i < m_matches->rowCount(); ++i)
        m_matches->item(i)->setSizeHint(row);
    if (m_matches->rowCount() == 0)
        return m_completer->popup()->hide();
    m_completer->complete();
    // Nothing is added by a Return that was meant for the next field.
    m_completer->popup()->setCurrentIndex(found.isEmpty() ? QModelIndex() : m_completer->completionModel()->index(0, 0));
}

void ReferencePicker::choose(const QModelIndex& index)
{
    if (!index.isValid() || !ClParent())
        return;
    if (index.data(idRole).toInt() == addsNew)
        return addTyped();
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
        const QModelIndex first = m_completer->completionModel()->index(0, 0);
        const QModelIndex chosen = list->currentIndex().isValid() ? list->currentIndex() : first;
        const bool byHand = list->currentIndex().isValid() || chosen.data(idRole).toInt() != addsNew;
        list->hide();
        if (byHand)
            return choose(chosen);
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

bool ReferencePicker::handleKey(QKeyEvent* event)
{
    if (event->key() != Qt::Key_F3 || !world().chooser)
        return FieldControl::handleKey(event);
    m_completer->popup()->hide();
    openChooser();
    return true;
}

void ReferencePicker::openChooser()
{
    if (!world().chooser || !ClParent() || m_line->isReadOnly())
        return openList();
    const qint32 now = m_pending ? 0 : ClParent()->value().toInt();
    const QPointer<ReferencePicker> still(this);
    const auto id =
        world().chooser->choose(ClParent()->ctype(), now, m_pending ? m_line->text().trimmed() : QString(), window());
    if (still)
        takeChosen(id);
}

void ReferencePicker::addTyped()
{
    if (!world().chooser || !ClParent())
        return;
    const QPointer<ReferencePicker> still(this);
    const auto id = world().chooser->add(ClParent()->ctype(), m_line->text().trimmed(), window());
    if (still)
        takeChosen(id);
}

void ReferencePicker::takeChosen(std::optional<qint32> id)
{
    m_line->setFocus(Qt::OtherFocusReason);
    if (!id || *id <= 0 || !ClParent())
        return;
    m_pending = false;
    edit(*id);
    Refresh();
}

void ReferencePicker::openList()
{
    if (!m_line->isReadOnly())
        showMatches(m_pending ? m_line->text() : QString());
}

} // namespace editing
