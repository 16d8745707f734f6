#include "editing/ui/Liens.h"

#include "editing/Trapped.h"

#include <QHBoxLayout>
#include <QSignalBlocker>

namespace editing {

using namespace Qt::StringLiterals;

namespace {

QString linkedModule(const Cl_Edition& field)
{
    const QString prefix = u"ID "_s;
    return field.champ().startsWith(prefix) ? field.champ().mid(prefix.size()) : field.NomModule();
}

} // namespace

Liens::Liens(Cl_Edition& parent, const ControlWorld& world, QWidget* owner)
    : FieldControl(parent, world, owner), m_list(new QComboBox(this))
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_list);
    m_list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    watch(m_list);
    connect(m_list, &QComboBox::activated, this, [this](int) { edit(m_list->currentData()); });
    Refresh();
}

void Liens::Refresh()
{
    if (!ClParent())
        return;
    const QSignalBlocker quiet(m_list);
    const QString module = linkedModule(*ClParent());
    m_list->clear();
    m_list->addItem(u"(aucun)"_s);
    QStringList ids;
    if (world().search) {
        for (const qint32 id : trapped("links", QList<qint32>(),
                                       [&] { return world().search->records(module, ClParent()->IDIndividu()); }))
            ids << QString::number(id);
    }
    const QStringList held = ClParent()->SelectedItems();
    for (const QString& id : held) {
        if (!ids.contains(id))
            ids << id; // of another individual, or no more there: it is not dropped by looking at it
    }
    for (const QString& id : std::as_const(ids)) {
        const QString says = world().described ? world().described(module, id.toInt()) : QString();
        m_list->addItem(u"N° "_s + id + (says.isEmpty() ? QString() : u" : "_s + says), id);
    }
    m_list->setCurrentIndex(held.isEmpty() ? 0 : m_list->findData(held.first()));
}

} // namespace editing
