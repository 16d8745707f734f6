#include "app/ui/Icons.h"

#include <QApplication>
#include <QHash>
#include <QPalette>
#include <QBuffer>
#include <QImageReader>
#include <QPixmap>
#include <QStandardPaths>

/// The resource stands in a static library: without a call nothing would link it. Outside any namespace, as the
/// macro wants it.
static void registerIcons()
{
    Q_INIT_RESOURCE(icons);
}

namespace app {

using namespace Qt::StringLiterals;

namespace {

QIcon drawn(const QString& file)
{
    registerIcons();
    return QIcon(u":/herbora/icons/"_s + file + u".svg"_s);
}

/// The picture of a module in the sizes in use; a drawing is drawn anew for each.
QIcon pictured(const QByteArray& bytes)
{
    QIcon icon;
    for (const int side : {16, 24, 32, 48}) {
        QBuffer buffer;
        buffer.setData(bytes);
        QImageReader reader(&buffer);
        reader.setScaledSize(reader.size().scaled(side, side, Qt::KeepAspectRatio));
        const QImage image = reader.read();
        if (!image.isNull())
            icon.addPixmap(QPixmap::fromImage(image));
    }
    return icon;
}

} // namespace

QIcon iconNamed(const QString& name)
{
    static const QHash<QString, QString> files{
        {u"Database"_s, u"database"_s},         {u"Requête"_s, u"requete"_s},
        {u"Modèle"_s, u"modele"_s},             {u"Sélection"_s, u"selection"_s},
        {u"Base"_s, u"database"_s},             {u"Lsbotanistes"_s, u"collecteurs"_s},
        {u"Lslocalités"_s, u"localites"_s},     {u"Lstaxons"_s, u"taxons"_s},
        {u"Individus"_s, u"individus"_s},       {u"Images"_s, u"images"_s},
        {u"Déterminations"_s, u"determinations"_s}, {u"Mesures"_s, u"mesures"_s},
    };
    return drawn(files.value(name, u"module"_s));
}

QIcon iconNamed(const QString& name, const QList<data::ModuleRecord>& modules)
{
    const QString own = u"module:"_s;
    if (!name.startsWith(own))
        return iconNamed(name);
    for (const data::ModuleRecord& module : modules) {
        if (module.name != name.mid(own.size()))
            continue;
        const QIcon icon = pictured(module.icon);
        if (!icon.isNull())
            return icon;
    }
    return iconNamed(name.mid(own.size()));
}

QIcon programIcon()
{
    return drawn(u"herbora"_s);
}

QIcon themeIcon(const QString& name)
{
    return QIcon::fromTheme(name);
}

void followPalette()
{
    const QString current = QIcon::themeName();
    const bool ours = current.isEmpty() || current == u"hicolor" || current.startsWith(u"breeze"_s);
    if (!ours)
        return;
    const QPalette palette = QApplication::palette();
    QStringList folders = QIcon::themeSearchPaths();
    const QStringList installed = QStandardPaths::locateAll(QStandardPaths::GenericDataLocation, u"icons"_s,
                                                            QStandardPaths::LocateDirectory);
    for (const QString& folder : installed) {
        if (!folders.contains(folder))
            folders << folder; // platforms without a desktop name none
    }
    QIcon::setThemeSearchPaths(folders);
    const bool dark = palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
    QIcon::setThemeName(dark ? u"breeze-dark"_s : u"breeze"_s);
}

} // namespace app
