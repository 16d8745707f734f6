#include "app/AddinLibrary.h"

#include "jet/Error.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonObject>
#include <QLoggingCategory>
#include <QPluginLoader>
#include <QThread>

namespace app {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(libraryLog, "herbora.addin.library")

constexpr int notLoadable = 48;
constexpr int notAnAddin = 429;

/// The identifier of the interface without its version.
QString interfaceName()
{
    return QString::fromLatin1(HerboraPlugin_iid).section(u'/', 0, 0);
}

} // namespace

QStringList addinFiles(const QString& folder)
{
#if defined(Q_OS_WIN)
    const QString pattern = u"*.dll"_s;
#elif defined(Q_OS_MACOS)
    const QString pattern = u"*.dylib"_s;
#else
    const QString pattern = u"*.so"_s;
#endif
    QStringList files;
    const QDir place(folder);
    for (const QString& name : place.entryList({pattern}, QDir::Files, QDir::Name))
        files << place.absoluteFilePath(name);
    return files;
}

QString addinName(const QString& file)
{
    QString name = QFileInfo(file).completeBaseName();
    const QString prefix = u"lib"_s;
    if (name.startsWith(prefix) && name != prefix)
        name.remove(0, prefix.size());
    return name;
}

QString addinRefusal(const QString& file)
{
    const QString made = QPluginLoader(file).metaData().value(u"IID"_s).toString();
    if (made.section(u'/', 0, 0) != interfaceName() || made == QLatin1String(HerboraPlugin_iid))
        return {};
    return addinRefusal(file, made.section(u'/', 1));
}

QString addinRefusal(const QString& file, const QString& version)
{
    return u"La bibliothèque « %1 » a été faite pour la version %2 de l'interface des compléments, alors que ce "
           "programme attend la version %3 : elle n'est pas utilisée.\n"
           "Demandez à son auteur une bibliothèque faite pour cette version."_s.arg(
               file, version, QString::number(addin::interfaceVersion));
}

addin::Plugin& loadAddin(const QString& file)
{
    QPluginLoader loader(file);
    const QString made = loader.metaData().value(u"IID"_s).toString();
    if (made.isEmpty()) {
        qCWarning(libraryLog).noquote() << loader.errorString();
        throw jet::Error(notLoadable, u"Le fichier « %1 » n'est pas une bibliothèque de complément."_s.arg(file));
    }
    if (made != QLatin1String(HerboraPlugin_iid))
        throw jet::Error(notAnAddin, u"La bibliothèque « %1 » n'est pas un complément de Herbora."_s.arg(file));
    // A symbol that is missing must be found out here, not by an abort at the first call.
    loader.setLoadHints(QLibrary::ResolveAllSymbolsHint | QLibrary::PreventUnloadHint);
    QObject* object = loader.instance();
    if (!object)
        throw jet::Error(notLoadable, u"La bibliothèque « %1 » n'a pas pu être chargée : %2"_s.arg(
                                          file, loader.errorString()));
    auto* plugin = qobject_cast<addin::Plugin*>(object);
    if (!plugin)
        throw jet::Error(notAnAddin, u"La bibliothèque « %1 » n'est pas un complément de Herbora : son objet d'entrée "
                                     "n'est pas de la classe attendue."_s.arg(file));
    // Made on the thread of this opening, kept for the whole program.
    if (object->thread() == QThread::currentThread() && QCoreApplication::instance())
        object->moveToThread(QCoreApplication::instance()->thread());
    return *plugin;
}

} // namespace app
