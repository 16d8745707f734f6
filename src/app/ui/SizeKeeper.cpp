#include "app/ui/SizeKeeper.h"

#include "app/ui/WindowState.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>

namespace app {

using namespace Qt::StringLiterals;

namespace {

/// By their names: dialogs whose size is the user's choice.
const QStringList& kept()
{
    static const QStringList names{u"Form4"_s,           u"Form14"_s,           u"accessReport"_s, u"apercuImpression"_s,
                                   u"apercuStructure"_s, u"choix"_s,            u"essaiSaisie"_s,  u"imageFolders"_s,
                                   u"importTableau"_s,   u"listeDescripteurs"_s, u"wizardLinks"_s};
    return names;
}

} // namespace

SizeKeeper::SizeKeeper(WindowState& state, QObject* parent) : QObject(parent), m_state(state)
{
    qApp->installEventFilter(this);
}

bool SizeKeeper::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::Show && event->type() != QEvent::Hide)
        return false;
    auto* dialog = qobject_cast<QDialog*>(watched);
    if (!dialog || event->spontaneous() || !kept().contains(dialog->objectName()))
        return false;
    const QString key = u"dialogues/"_s + dialog->objectName();
    if (event->type() == QEvent::Hide)
        m_state.setValue(key, dialog->size());
    else if (const QSize size = m_state.value(key).toSize(); size.isValid())
        dialog->resize(size.expandedTo(dialog->minimumSizeHint()));
    return false;
}

} // namespace app
