#include "reference/ui/Chooser.h"

#include "reference/ui/Botaniste.h"
#include "reference/ui/ReferenceTree.h"
#include "reference/ui/ReferenceWorld.h"

#include <QPushButton>

namespace reference {

using namespace Qt::StringLiterals;

namespace {

QString titleOf(int type)
{
    return type == data::Taxon      ? u"Choisir un taxon"_s
           : type == data::Localité ? u"Choisir une localité"_s
                                    : u"Choisir un collecteur"_s;
}

/// Runs the form of a new row; nothing when it was given up.
std::optional<qint32> added(ReferenceList& list, const std::function<bool()>& run)
{
    qint32 id = 0;
    const auto told = QObject::connect(&list, &ReferenceList::Change, [&id](qint32 changed) { id = changed; });
    const bool done = run();
    QObject::disconnect(told);
    return done && id > 0 ? std::optional(id) : std::nullopt;
}

/// The row of that full name and rank; 0 for none.
qint32 named(const Cl_Taxon& taxa, const QString& name, int rank)
{
    const Found found = taxa.SearchTaxons(name, rank);
    for (qsizetype i = 0; i < found.ids.size(); ++i) {
        if (found.names[i].compare(name, Qt::CaseInsensitive) == 0)
            return found.ids[i];
    }
    return 0;
}

} // namespace

std::unique_ptr<ReferenceControl> makeControl(const std::shared_ptr<ReferenceWorld>& world, int type, QWidget* parent)
{
    if (type == data::Taxon)
        return std::make_unique<Taxons>(world, parent);
    if (type == data::Localité)
        return std::make_unique<PlaceTree>(world, parent);
    return std::make_unique<Botaniste>(world, parent);
}

ChoiceDialog::ChoiceDialog(const std::shared_ptr<ReferenceWorld>& world, int type, const QString& title, QWidget* parent)
    : QDialog(parent), m_control(makeControl(world, type, this).release()),
      m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this))
{
    setObjectName(u"choix"_s);
    setWindowTitle(title);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_control, 1);
    layout->addWidget(m_buttons);
    m_buttons->button(QDialogButtonBox::Ok)->setText(u"&Choisir"_s);
    m_buttons->button(QDialogButtonBox::Cancel)->setText(u"A&nnuler"_s);
    for (QAbstractButton* button : m_buttons->buttons())
        static_cast<QPushButton*>(button)->setAutoDefault(false); // Return belongs to the list
    connect(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_control, &ReferenceControl::rowActivated, this, &QDialog::accept);
    connect(m_control, &ReferenceControl::rowChosen, this, &ChoiceDialog::updateButtons);
    connect(m_control, &ReferenceControl::editWanted, this, [world, type](qint32 id) {
        if (type == data::Taxon)
            world->taxa.Edit(id);
        else if (type == data::Localité)
            world->places.Edit(id);
        else
            world->people.Edit(id);
    });
    auto* find = new QAction(this);
    find->setShortcut(QKeySequence(u"Ctrl+F"_s));
    connect(find, &QAction::triggered, m_control, &ReferenceControl::find);
    addAction(find);
    resize(520, 560);
    updateButtons();
}

void ChoiceDialog::updateButtons()
{
    m_buttons->button(QDialogButtonBox::Ok)->setEnabled(m_top || chosen() > 0);
}

std::optional<qint32> Chooser::choose(int fieldType, qint32 current, const QString& typed, QWidget* over)
{
    const std::shared_ptr<ReferenceWorld> world = m_world();
    if (!world)
        return {};
    world->waitHere();
    ChoiceDialog dialog(world, fieldType, titleOf(fieldType), over);
    if (current > 0 && dialog.control().showRow(current)) {
        dialog.control().view().setFocus();
    } else {
        dialog.control().find();
        if (!typed.isEmpty())
            dialog.control().findLine().find(typed);
    }
    if (dialog.exec() != QDialog::Accepted || dialog.chosen() <= 0)
        return {};
    return dialog.chosen();
}

std::optional<qint32> Chooser::add(int fieldType, const QString& typed, QWidget* over)
{
    const std::shared_ptr<ReferenceWorld> world = m_world();
    if (!world || world->readOnly)
        return {};
    world->waitHere();
    std::optional<qint32> id;
    if (fieldType == data::Taxon)
        id = addTaxon(*world, typed);
    else if (fieldType == data::Localité)
        id = addPlace(world, typed, over);
    else
        id = added(world->people, [&] { return world->people.Add(typed); });
    if (id)
        world->written(ReferenceWorld::table(fieldType));
    return id;
}

/// The words tell the rank: "Fagaceae" a family, "Quercus" a genus, "Quercus alba" a species of it, with more words a name
/// under the species. A parent that is not there yet is asked for in the form.
std::optional<qint32> Chooser::addTaxon(ReferenceWorld& world, const QString& typed) const
{
    const QStringList words = typed.simplified().split(u' ', Qt::SkipEmptyParts);
    Cl_Taxon& taxa = world.taxa;
    if (words.size() <= 1) {
        const int rank = words.isEmpty() || words.first().endsWith(u"aceae"_s, Qt::CaseInsensitive) ? 1 : 2;
        return added(taxa, [&] { return taxa.AddOfRank(rank, words.value(0)); });
    }
    const int rank = words.size() == 2 ? 3 : 4;
    const QString above = words.first(rank - 2).join(u' ');
    const QString name = words.mid(rank - 2).join(u' ');
    const qint32 parent = named(taxa, above, rank - 1);
    return added(taxa, [&] { return parent > 0 ? taxa.Add(parent, name) : taxa.AddOfRank(rank, name); });
}

std::optional<qint32> Chooser::addPlace(const std::shared_ptr<ReferenceWorld>& world, const QString& typed,
                                        QWidget* over) const
{
    ChoiceDialog dialog(world, data::Localité, u"Dans quelle localité ajouter \""_s + typed + u"\" ?"_s, over);
    dialog.allowTop();
    dialog.control().view().setFocus();
    if (dialog.exec() != QDialog::Accepted)
        return {};
    return added(world->places, [&] { return world->places.Add(dialog.chosen(), {{u"Localité"_s, typed}}); });
}

} // namespace reference
