#include "app/ui/RecentFiles.h"

#include "app/ui/Icons.h"

#include <QDir>
#include <QFileInfo>

namespace app {

using namespace Qt::StringLiterals;

namespace {

constexpr int most = 10;
const QString recentKey = u"projets/recents"_s;

/// An ampersand in a file name is no mnemonic.
QString asItIs(QString text)
{
    return text.replace(u'&', u"&&"_s);
}

} // namespace

RecentFiles::RecentFiles(WindowState& state, QObject* parent) : QObject(parent), m_state(state) {}

QStringList RecentFiles::paths() const
{
    return m_state.value(recentKey).toStringList();
}

void RecentFiles::keep(const QStringList& paths)
{
    m_state.setValue(recentKey, paths);
    Q_EMIT changed();
}

void RecentFiles::add(const QString& path)
{
    QStringList all = paths();
    all.removeAll(path);
    all.prepend(path);
    keep(all.mid(0, most));
}

void RecentFiles::clear()
{
    keep({});
}

QString RecentFiles::folderText(const QString& path)
{
    const QString folder = QFileInfo(path).absolutePath();
    const QString home = QDir::homePath();
    if (folder == home)
        return u"~"_s;
    return folder.startsWith(home + u'/') ? u'~' + folder.mid(home.size()) : folder;
}

void RecentFiles::fillWhenShown(QMenu* menu)
{
    connect(menu, &QMenu::aboutToShow, this, [this, menu] { fill(menu); });
    fill(menu);
}

void RecentFiles::fill(QMenu* menu)
{
    menu->clear();
    const QStringList all = paths();
    for (qsizetype i = 0; i < all.size(); ++i) {
        const QString path = all.at(i);
        QAction* action =
            menu->addAction(u'&' + QString::number((i + 1) % most) + u"  "_s + asItIs(QFileInfo(path).fileName())
                            + u" — "_s + asItIs(folderText(path)));
        action->setObjectName(u"recent%1"_s.arg(i + 1));
        action->setIcon(iconNamed(u"Database"_s));
        action->setEnabled(QFileInfo(path).isFile());
        action->setStatusTip(path);
        connect(action, &QAction::triggered, this, [this, path] { Q_EMIT chosen(path); });
    }
    if (all.isEmpty()) {
        QAction* none = menu->addAction(u"Aucun projet récent"_s);
        none->setObjectName(u"recentNone"_s);
        none->setEnabled(false);
    }
    menu->addSeparator();
    QAction* forget = menu->addAction(themeIcon(u"edit-clear-history"_s), u"&Effacer la liste"_s);
    forget->setObjectName(u"recentClear"_s);
    forget->setStatusTip(u"Oublier les projets récents (les fichiers restent)"_s);
    forget->setEnabled(!all.isEmpty());
    connect(forget, &QAction::triggered, this, &RecentFiles::clear);
}

} // namespace app
