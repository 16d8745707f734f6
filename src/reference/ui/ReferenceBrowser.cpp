#include "reference/ui/ReferenceBrowser.h"

#include "platform/ui/TaskRunner.h"
#include "reference/ui/ReferenceWorld.h"

#include <QHBoxLayout>
#include <QLocale>
#include <QLoggingCategory>

namespace reference {

using namespace Qt::StringLiterals;
using platform::TabCommand;

namespace {

Q_LOGGING_CATEGORY(browserLog, "herbora.reference.ui")

/// Walking through a list by its arrows counts nothing on the way.
constexpr int restMilliseconds = 120;

QString individualsText(qsizetype count)
{
    return QLocale().toString(count) + (count > 1 ? u" individus"_s : u" individu"_s);
}

} // namespace

ReferenceBrowser::ReferenceBrowser(std::shared_ptr<ReferenceWorld> world, QWidget* parent)
    : DocumentTab(parent), m_world(std::move(world)), m_form(new RowForm(m_world, this)), m_splitter(new QSplitter(this))
{
    m_counting.setSingleShot(true);
    m_counting.setInterval(restMilliseconds);
    connect(&m_counting, &QTimer::timeout, this, &ReferenceBrowser::refreshCount);
}

ReferenceBrowser::~ReferenceBrowser()
{
    if (m_control)
        m_world->remember(key() + u"/volets"_s, m_splitter->saveState());
}

QString ReferenceBrowser::keyOf(const QString& table)
{
    return u"Navigateur-"_s + table;
}

void ReferenceBrowser::arrange(ReferenceControl* control, QWidget* left, const QString& icon)
{
    m_control = control;
    m_icon = m_world->icon(icon);
    setObjectName(key());
    m_splitter->setObjectName(u"volets"_s);
    m_splitter->addWidget(left);
    m_splitter->addWidget(m_form);
    m_splitter->setChildrenCollapsible(false);
    m_splitter->setStretchFactor(0, 2);
    m_splitter->setStretchFactor(1, 3);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_splitter);
    setFocusProxy(control);
    const int unit = fontMetrics().averageCharWidth();
    m_splitter->setSizes({left == control ? 50 * unit : 85 * unit, 75 * unit});
    m_splitter->restoreState(m_world->remembered(key() + u"/volets"_s).toByteArray());
    control->mayLeave = [this] { return m_form->mayLeave(); };
    connect(control, &ReferenceControl::rowChosen, this, &ReferenceBrowser::choose);
    connect(control, &ReferenceControl::selectionChanged, this, &ReferenceBrowser::stateChanged);
    const auto edit = [this] {
        if (m_shown > 0)
            m_form->focusFirst();
    };
    connect(control, &ReferenceControl::editWanted, this, edit);
    connect(control, &ReferenceControl::rowActivated, this, edit);
    connect(m_form, &RowForm::typedChanged, this, &ReferenceBrowser::stateChanged);
    connect(m_form, &RowForm::undoWanted, this, &ReferenceBrowser::showCurrent);
    connect(m_form, &RowForm::saved, this, [this] {
        m_form->setTitle(titleOf(m_shown));
        noteSaved();
        m_world->written(ReferenceWorld::table(m_control->type()));
    });
    connect(m_form, &RowForm::individualsWanted, control->command(u"individuals"_s), &QAction::trigger);
    ReferenceList& list = m_world->list(control->type());
    connect(&list, &ReferenceList::Change, this, &ReferenceBrowser::rowWritten);
    connect(&list, &ReferenceList::Delete, this, [this](qint32 id) {
        if (id == m_shown)
            choose(0);
    });
    m_form->showNothing(u"Aucune ligne n'est sélectionnée"_s);
}

// --- What is shown ---------------------------------------------------------------------------------

QString ReferenceBrowser::titleOf(qint32 id) const
{
    return m_world->name(m_control->type(), id);
}

/// The selection has moved; it comes back when the user stays with what is typed.
void ReferenceBrowser::choose(qint32 id)
{
    if (m_staying || id == m_shown)
        return;
    if (m_form->isSaving()) { // the row left the list that is shown
        QMetaObject::invokeMethod(this, [this] { choose(m_control->currentId()); }, Qt::QueuedConnection);
        return;
    }
    m_world->whenHere(this, [this] {
        if (m_control->currentId() == m_shown)
            return;
        if (!m_form->mayLeave()) {
            m_staying = true;
            m_control->showRow(m_shown);
            m_staying = false;
            return;
        }
        m_shown = m_control->currentId();
        showCurrent();
    });
}

void ReferenceBrowser::showCurrent()
{
    m_counting.stop();
    if (m_shown <= 0) {
        m_form->showNothing(u"Aucune ligne n'est sélectionnée"_s);
        return;
    }
    try {
        showForm(m_shown);
        m_form->setCount({}, false);
        m_counting.start();
    } catch (const jet::Error& error) {
        qCWarning(browserLog).noquote() << title() << error.number() << error.description();
        m_form->showNothing(error.description());
    }
    Q_EMIT stateChanged();
}

void ReferenceBrowser::refreshCount()
{
    if (m_shown <= 0)
        return;
    if (m_world->isAway()) {
        m_counting.start();
        return;
    }
    try {
        const qsizetype all = m_world->referring.individualsBelow(m_control->type(), m_shown).size();
        const qsizetype own = m_world->referring.individuals(m_control->type(), m_shown).size();
        QString text = all == 0 ? u"Aucun individu ne s'y rapporte"_s : individualsText(all);
        if (own != all)
            text += u", dont "_s + QLocale().toString(own) + u" directement"_s;
        m_form->setCount(text, all > 0);
    } catch (const jet::Error& error) {
        qCWarning(browserLog).noquote() << title() << error.number() << error.description();
        m_form->setCount(error.description(), false);
    }
}

/// Somebody, perhaps the form itself, wrote a row: what is shown and not typed over follows.
void ReferenceBrowser::rowWritten(qint32 id)
{
    if (id == m_shown && !m_form->isTyped())
        m_world->whenHere(this, [this] {
            if (!m_form->isTyped())
                showCurrent();
        });
}

bool ReferenceBrowser::showRow(qint32 id)
{
    if (id <= 0)
        return true;
    const bool found = m_control->showRow(id);
    m_control->setFocus();
    return found && m_shown == id;
}

void ReferenceBrowser::recordsWritten(const QStringList&)
{
    if (m_shown > 0)
        m_counting.start();
}

// --- The tab ---------------------------------------------------------------------------------------

QString ReferenceBrowser::key() const
{
    return keyOf(ReferenceWorld::table(m_control->type()));
}

QString ReferenceBrowser::title() const
{
    const QString name = ReferenceWorld::table(m_control->type());
    return m_form->isTyped() ? name + u" *"_s : name;
}

QIcon ReferenceBrowser::icon() const
{
    return m_icon;
}

QString ReferenceBrowser::statusText() const
{
    const qsizetype count = m_control->selectedIds().size();
    return count > 1 ? QLocale().toString(count) + u" lignes sélectionnées"_s : QString();
}

bool ReferenceBrowser::can(TabCommand command) const
{
    switch (command) {
    case TabCommand::Copy:
        return !m_control->selectedIds().isEmpty();
    case TabCommand::Save:
        return m_form->isTyped();
    case TabCommand::Find:
    case TabCommand::Refresh:
        return true;
    default:
        return false;
    }
}

void ReferenceBrowser::run(TabCommand command)
{
    m_world->whenHere(this, [this, command] {
        switch (command) {
        case TabCommand::Copy:
            m_control->copy();
            break;
        case TabCommand::Save:
            m_form->save();
            break;
        case TabCommand::Find:
            m_control->find();
            break;
        case TabCommand::Refresh:
            m_control->reload();
            if (!m_form->isTyped())
                showCurrent();
            break;
        default:
            break;
        }
    });
}

bool ReferenceBrowser::mayClose()
{
    return m_form->mayLeave();
}

} // namespace reference
