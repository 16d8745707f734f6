#include "Project.h"

#include "data/Verification.h"
#include "jet/Recordset.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QFileInfo>
#include <QTextStream>
#include <stdexcept>

namespace faults {

using namespace Qt::StringLiterals;

namespace {

[[noreturn]] void unsound(const QString& path, const QString& why)
{
    throw std::runtime_error(QFileInfo(path).fileName().toStdString() + " : " + why.toStdString());
}

void addRows(jet::Database& database, const QString& table, QDataStream& out)
{
    const auto rows = database.OpenRecordset(table, jet::RecordsetType::Table);
    for (; !rows->EOF_(); rows->MoveNext()) {
        for (int column = 0; column < rows->FieldCount(); ++column) {
            out << rows->Value(column);
        }
    }
}

void addDefinitions(const jet::TableDef& table, QDataStream& out)
{
    out << table.Name;
    for (const jet::Field& field : table.Fields) {
        out << field.Name << int(field.Type) << field.Size << field.Required
            << field.AllowZeroLength << field.AutoIncrement << field.DefaultValue
            << field.ValidationRule;
    }
    QStringList indexes;
    for (const jet::Index& index : table.Indexes) {
        QStringList columns;
        for (const jet::IndexField& column : index.Fields) {
            columns << column.Name;
        }
        indexes << index.Name + u'(' + columns.join(u',') + u')' + QString::number(index.Unique);
    }
    indexes.sort();
    out << indexes;
}

QByteArray everything(jet::Database& database)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    QStringList names;
    for (const jet::TableDef& table : database.schema().tables()) {
        names << table.Name;
    }
    names.sort();
    for (const QString& name : names) {
        addDefinitions(*database.schema().table(name), out);
        addRows(database, name, out);
    }
    QStringList others;
    for (const jet::Relation& relation : database.schema().relations()) {
        others << relation.Name + u':' + relation.Table + u'>' + relation.ForeignTable;
    }
    for (const jet::QueryDef& query : database.schema().queries()) {
        others << query.Name + u':' + query.SQL;
    }
    others.sort();
    out << others;
    const QString version = u"HerboraVersion"_s;
    out << (database.hasProperty(version) ? database.Property(version) : QVariant());
    return bytes;
}

} // namespace

platform::Answer YesDialogues::ask(const platform::Message& message)
{
    say(message.text);
    return message.buttons == platform::BoxButtons::Ok ? platform::Answer::Ok
                                                       : platform::Answer::Yes;
}

std::optional<QString> YesDialogues::input(const QString&, const QString& prompt, const QString&)
{
    say(prompt);
    return {};
}

std::optional<QList<int>> YesDialogues::choose(const platform::Choice& choice)
{
    say(choice.prompt);
    return {};
}

QString YesDialogues::openFile(const QString& title, const QString&, const QString&)
{
    say(title);
    return {};
}

QStringList YesDialogues::openFiles(const QString& title, const QString&, const QString&)
{
    say(title);
    return {};
}

QString YesDialogues::saveFile(const QString& title, const QString&, const QString&)
{
    say(title);
    return {};
}

QString YesDialogues::chooseFolder(const QString& title, const QString&)
{
    say(title);
    return {};
}

Workplace::Workplace(const QString& folder)
    : m_folder(folder), m_settings(QFileInfo(folder).absolutePath() + u"/Herbora.ini"_s),
      m_session({m_dialogues, m_clock, m_settings, QFileInfo(folder).absolutePath(),
                 u"" HERBORA_VERSION ""_s})
{
}

bool Workplace::create()
{
    return m_session.create(project(), m_progression);
}
bool Workplace::open()
{
    return m_session.open(project(), m_progression);
}
bool Workplace::optimise()
{
    return m_session.optimise(m_progression);
}

bool say(const QString& message)
{
    QTextStream(stderr) << message << Qt::endl;
    return false;
}

QString fingerprint(const QString& path)
{
    if (!QFileInfo::exists(path)) {
        return u"absent"_s;
    }
    try {
        const auto database = jet::Database::Open(path);
        const QStringList findings = database->Check();
        if (!findings.isEmpty()) {
            unsound(path, findings.join(u" ; "_s));
        }
        const QByteArray all = everything(*database);
        return QString::fromLatin1(
            QCryptographicHash::hash(all, QCryptographicHash::Sha256).toHex());
    } catch (const jet::Error& error) {
        unsound(path, QString::number(error.number()) + u' ' + error.description());
    }
}

bool withProject(const QString& folder, const std::function<void(jet::Database&)>& work)
{
    Workplace place(folder);
    if (!place.open()) {
        return false;
    }
    try {
        jet::Operation operation(place.session().database(), u"Essai"_s);
        work(place.session().database());
        operation.commit();
    } catch (const jet::Error& error) {
        return say(QString::number(error.number()) + u' ' + error.description());
    }
    place.session().close();
    return true;
}

void makeProject(const QString& folder)
{
    Workplace place(folder);
    if (!place.create()) {
        throw std::runtime_error("création impossible");
    }
    place.session().close();
    const bool filled = withProject(folder, [](jet::Database& database) {
        for (
            const QString& statement : {
                u"INSERT INTO Collecteurs (Collecteur, Initiales) VALUES (\"Élodie Martin\", \"É.M.\")"_s,
                u"INSERT INTO Taxons (Taxon, [Nom Complet]) VALUES (\"Arabis\", \"Arabis\")"_s,
                u"INSERT INTO Individus (Numéro, [ID Collecteurs]) VALUES (\"1\", 1)"_s,
                u"INSERT INTO Individus (Numéro, [ID Collecteurs]) VALUES (\"2\", 1)"_s,
                u"INSERT INTO Individus (Numéro) VALUES (\"3\")"_s,
                u"INSERT INTO Déterminations ([ID Individus], [ID Taxons]) VALUES (1, 1)"_s,
                u"INSERT INTO Déterminations ([ID Individus], [ID Taxons]) VALUES (2, 1)"_s,
            }) {
            database.Execute(statement);
        }
    });
    if (!filled) {
        throw std::runtime_error("remplissage impossible");
    }
}

} // namespace faults
