#include "app/AccessImport.h"

#include "app/AccessModules.h"
#include "app/AddinLibrary.h"
#include "app/ProjectFiles.h"
#include "app/Session.h"
#include "data/CoreSchema.h"
#include "jet/Cancelled.h"

#include <QFileInfo>
#include <QLoggingCategory>

namespace app {

using namespace Qt::StringLiterals;
using jet::access::AccessFile;
using platform::BoxIcon;

namespace {

Q_LOGGING_CATEGORY(importLog, "herbora.import")

const QString conversionCaption = u"Herbora - Ancienne base Access"_s;
constexpr int wrongPassword = 3031;
const QString projectFilter = u"Fichiers Herbora (*.hbx)|*.hbx|"_s;

void sayFailure(const Surroundings& surroundings, const QString& source, const jet::Error& error)
{
    const bool stopped = error.number() == jet::cancelledError;
    if (!stopped)
        qCWarning(importLog).noquote() << "conversion of" << source << "failed:" << error.number() << error.description();
    surroundings.dialogues.tell(
        u"La base Access « %1 » n'a pas été convertie :\n%2"_s.arg(source, withFinalNames(error.description())),
        conversionCaption,
        stopped ? BoxIcon::Information : BoxIcon::Stop);
}

/// Shows each step once: the rows of a large table are thousands of calls.
class Steps {
public:
    explicit Steps(platform::Progression& progression) : m_progression(progression) {}

    bool operator()(const QString& text, int percent)
    {
        if (text != m_text || percent != m_percent)
            m_progression.step(text, percent);
        m_text = text;
        m_percent = percent;
        return !stopped();
    }
    bool stopped() const { return m_progression.cancelled(); }

private:
    platform::Progression& m_progression;
    QString m_text;
    int m_percent = -1;
};

/// "1 enregistrement", "2 enregistrements".
QString counted(qint64 count, const QString& what)
{
    return QString::number(count) + u' ' + what + (count == 1 ? QString() : u"s"_s);
}

void addList(QStringList& lines, const QString& title, const QStringList& entries)
{
    lines << QString() << title;
    for (const QString& entry : entries)
        lines << u"  - "_s + entry;
    if (entries.isEmpty())
        lines << u"  (aucune)"_s;
}

QStringList tableLines(const jet::access::TransferReport& report)
{
    QStringList lines;
    for (const jet::access::TransferredTable& table : report.tables)
        lines << QStringList{table.name + u" : "_s + counted(table.rows, u"enregistrement"_s),
                             counted(table.fields, u"champ"_s), QString::number(table.indexes) + u" index"_s}
                     .join(u", "_s);
    return lines;
}

QString reportText(const Surroundings& surroundings, const AccessPlan& plan,
                   const jet::access::TransferReport& report)
{
    QStringList lines{u"Importation d'une ancienne base Access"_s, QString(),
                      u"Ancien fichier : %1"_s.arg(plan.source), u"Format : %1"_s.arg(report.version),
                      u"Nouveau projet : %1"_s.arg(plan.target),
                      u"Date : %1"_s.arg(surroundings.clock.now().toString(u"dd/MM/yyyy hh:mm:ss"_s))};
    if (!plan.password.isEmpty())
        lines << u"Le nouveau projet n'a pas de mot de passe."_s;
    addList(lines, u"Laissé de côté ou changé"_s,
            report.remarks.isEmpty() ? QStringList{u"rien"_s} : report.remarks);
    addList(lines, u"Tables : %1, %2"_s.arg(QString::number(report.tables.size()),
                                            counted(report.rows(), u"enregistrement"_s)), tableLines(report));
    addList(lines, u"Relations"_s, report.relations);
    addList(lines, u"Requêtes enregistrées"_s, report.queries);
    if (!report.texts.isEmpty()) {
        QStringList texts;
        for (const jet::access::StoredQuery& query : report.texts)
            texts << u"%1 (%2)\n      %3"_s.arg(query.name, query.problem, query.sql);
        addList(lines, u"Requêtes gardées ici comme textes"_s, texts);
    }
    return lines.join(u'\n').remove(QChar(u'\0'));
}

QStringList librariesOf(const Surroundings& surroundings)
{
    QStringList names;
    for (const QString& file : addinFiles(surroundings.applicationFolder + u"/addins"_s))
        names << addinName(file);
    return names;
}

/// Makes the finished file under the name that is not its own yet.
QString makeProject(const Surroundings& surroundings, const AccessPlan& plan, const QString& unfinished, Steps& steps)
{
    steps(u"Lecture de l'ancienne base"_s, 0);
    AccessFile old(plan.source, plan.password);
    const auto database = jet::Database::Create(unfinished, data::localeGeneral);
    jet::Operation operation(*database, u"Importation d'une ancienne base"_s);
    database->SetProgress([&steps] { return !steps.stopped(); }); // an index of a large table takes its time
    const auto progress = [&](const QString& text, double done) { return steps(text, int(done * 95)); };
    jet::access::TransferReport report = jet::access::transfer(old, *database, progress);
    report.remarks += alignCoreTables(*database);
    report.remarks += adoptModules(*database, librariesOf(surroundings));
    const QString text = reportText(surroundings, plan, report);
    database->SetProperty(importReportProperty, text);
    if (!steps(u"Écriture du nouveau projet"_s, 97))
        jet::fail(jet::cancelledError, u"Importation"_s);
    operation.commit();
    database->Close();
    return text;
}

} // namespace

QString convertedPath(const QString& source)
{
    const QFileInfo file(source);
    const QString begin = file.absolutePath() + u'/' + file.completeBaseName() + u" (converti"_s;
    QString path = begin + u").hbx"_s;
    for (int number = 2; QFileInfo::exists(path); ++number)
        path = begin + u' ' + QString::number(number) + u").hbx"_s;
    return path;
}

bool askPassword(const Surroundings& surroundings, AccessPlan& plan)
{
    while (true) {
        try {
            jet::access::PageFile(plan.source, plan.password);
            return true;
        } catch (const jet::Error& error) {
            if (error.number() != wrongPassword) {
                sayFailure(surroundings, plan.source, error);
                return false;
            }
            const QString prompt = plan.password.isEmpty() ? u"Mot de passe de l'ancienne base :"_s
                                                           : u"Ce n'est pas le mot de passe de l'ancienne base.\nMot de passe :"_s;
            const std::optional<QString> typed = surroundings.dialogues.password(conversionCaption, prompt);
            if (!typed)
                return false;
            plan.password = *typed;
        }
    }
}

std::optional<AccessPlan> planConversion(const Surroundings& surroundings, const QString& source)
{
    AccessPlan plan{QFileInfo(source).absoluteFilePath(), convertedPath(source)};
    try {
        jet::access::PageFile(plan.source, {});
    } catch (const jet::Error& error) {
        if (error.number() != wrongPassword) {
            sayFailure(surroundings, plan.source, error);
            return {};
        }
    }
    const bool agreed = surroundings.dialogues.confirm(
        u"Le fichier « %1 » est une ancienne base Access.\n"
        "Herbora va en faire un nouveau projet, « %2 », et l'ouvrir. L'ancien fichier n'est pas modifié.\n"
        "Voulez-vous continuer ?"_s.arg(plan.source, QFileInfo(plan.target).fileName()),
        conversionCaption);
    if (!agreed)
        return {};
    if (!QFileInfo(QFileInfo(plan.target).absolutePath()).isWritable()) {
        plan.target = surroundings.dialogues.saveFile(u"Nouveau projet"_s, projectFilter, QFileInfo(plan.target).fileName());
        if (plan.target.isEmpty())
            return {};
        if (!plan.target.endsWith(u".hbx"_s, Qt::CaseInsensitive))
            plan.target += u".hbx"_s;
    }
    if (!askPassword(surroundings, plan))
        return {};
    return plan;
}

QString convertAccess(const Surroundings& surroundings, const AccessPlan& plan, platform::Progression& progression)
{
    const QString target = QFileInfo(plan.target).absoluteFilePath();
    if (QFileInfo::exists(target))
        jet::fail(3204, target);
    if (!QFileInfo(QFileInfo(target).absolutePath()).isDir())
        jet::fail(3044, target);
    removeStrayFiles(target);
    Steps steps(progression);
    try {
        const QString unfinished = temporaryPath(target);
        const QString report = makeProject(surroundings, plan, unfinished, steps);
        moveToNewName(unfinished, target);
        return report;
    } catch (...) {
        removeStrayFiles(target);
        throw;
    }
}

bool convertAndOpen(Session& session, const AccessPlan& plan, platform::Progression& progression)
{
    const Surroundings& surroundings = session.surroundings();
    try {
        convertAccess(surroundings, plan, progression);
    } catch (const jet::Error& error) {
        sayFailure(surroundings, plan.source, error);
        progression.finish();
        return false;
    } catch (const std::exception& error) {
        sayFailure(surroundings, plan.source,
                   jet::Error(7, u"Mémoire ou ressource insuffisante : %1."_s.arg(QString::fromUtf8(error.what()))));
        progression.finish();
        return false;
    }
    return session.open(plan.target, progression);
}

} // namespace app
