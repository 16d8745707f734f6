#include "app/ui/Photographer.h"

#include "app/Session.h"
#include "app/ui/Icons.h"
#include "app/ui/Program.h"

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QTextStream>
#include <QTimer>

namespace app {

using namespace Qt::StringLiterals;

void Photographer::settle(const std::function<bool()>& ready)
{
    QEventLoop loop;
    QTimer look;
    int quiet = 0; // one turn more lays out what changed last
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        bool still = m_program.runner().isRunning() || (ready && !ready());
        for (GridTab* grid : m_program.window().documents().grids())
            still = still || grid->model().isLoading() || !grid->model().isComplete();
        quiet = still ? 0 : quiet + 1;
        if (quiet > 2)
            loop.quit();
    });
    look.start(20);
    loop.exec();
}

void Photographer::take(const QString& name)
{
    take(name, m_program.window());
}

void Photographer::take(const QString& name, QWidget& window)
{
    const QString path = m_folder + u'/' + name + m_suffix + u".png"_s;
    const bool written = window.grab().save(path);
    m_written = m_written && written;
    if (written)
        QTextStream(stdout) << QDir(path).absolutePath() << '\n';
    else
        QTextStream(stderr) << u"Impossible d'écrire "_s << path << '\n';
}

void Photographer::open(const QString& key)
{
    ModuleDock& dock = m_program.window().dock();
    const QModelIndex index = dock.model().indexOf(key);
    dock.view().setCurrentIndex(index);
    dock.commands().runDefault();
    settle();
}

void Photographer::setPalette(const QPalette& palette, const QString& suffix)
{
    QApplication::setPalette(palette);
    followPalette();
    m_suffix = suffix;
    settle();
}

} // namespace app
