#include "cli/Commands.h"

#include "cli/Terminal.h"
#include "jet/Database.h"
#include "jet/Recordset.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>

namespace cli {

using namespace Qt::StringLiterals;

namespace {

/// Rows are fetched and printed in pieces, so that memory does not grow with the result.
constexpr qint64 piece = 1000;

QJsonValue jsonOf(const QVariant& value)
{
    if (!value.isValid())
        return QJsonValue::Null;
    switch (value.typeId()) {
    case QMetaType::QByteArray: return QString::fromLatin1(value.toByteArray().toBase64());
    case QMetaType::Bool: return value.toBool();
    case QMetaType::QDateTime: return QLocale::c().toString(value.toDateTime(), u"yyyy-MM-ddTHH:mm:ss"_s);
    default: return QJsonValue::fromVariant(value);
    }
}

QString textOf(const QVariant& value)
{
    if (!value.isValid())
        return {};
    if (value.typeId() == QMetaType::Bool)
        return value.toBool() ? u"Vrai"_s : u"Faux"_s;
    if (value.typeId() == QMetaType::Double)
        return QLocale::c().toString(value.toDouble(), 'g', 15);
    if (value.typeId() == QMetaType::QByteArray)
        return QString::fromLatin1(value.toByteArray().toBase64());
    return jsonOf(value).toVariant().toString();
}

QString csvCell(QString text)
{
    return u'"' + text.replace(u'"', u"\"\""_s) + u'"';
}

QStringList headerOf(const jet::Recordset& rows)
{
    QStringList names;
    for (int i = 0; i < rows.FieldCount(); ++i)
        names << rows.FieldAt(i).name;
    return names;
}

QJsonObject jsonRows(jet::Recordset& rows)
{
    QJsonArray lines;
    while (!rows.EOF_()) {
        for (const auto& row : rows.GetRows(piece)) {
            QJsonArray cells;
            for (const QVariant& value : row)
                cells.append(jsonOf(value));
            lines.append(cells);
        }
    }
    return {{u"colonnes"_s, QJsonArray::fromStringList(headerOf(rows))}, {u"lignes"_s, lines}};
}

void printRows(jet::Recordset& rows, bool csv)
{
    const auto line = [csv](const QStringList& cells) {
        QStringList written;
        for (const QString& cell : cells)
            written << (csv ? csvCell(cell) : plainCell(cell));
        printLine(written.join(csv ? u';' : u'\t'));
    };
    line(headerOf(rows));
    while (!rows.EOF_()) {
        for (const auto& row : rows.GetRows(piece)) {
            QStringList cells;
            for (const QVariant& value : row)
                cells << textOf(value);
            line(cells);
        }
    }
}

bool isQuery(const QString& statement)
{
    const QString begin = statement.trimmed();
    return begin.startsWith(u"select", Qt::CaseInsensitive) || begin.startsWith(u'(');
}

QJsonObject runJson(jet::Database& database, const QString& statement)
{
    if (!isQuery(statement))
        return {{u"modifies"_s, database.Execute(statement)}};
    const auto rows = database.OpenRecordset(statement);
    return jsonRows(*rows);
}

void runPlain(jet::Database& database, const QString& statement, bool csv)
{
    if (!isQuery(statement)) {
        printLine(QString::number(database.Execute(statement)) + u" enregistrement(s) modifié(s)"_s);
        return;
    }
    const auto rows = database.OpenRecordset(statement);
    printRows(*rows, csv);
}

void printJson(const QJsonArray& results)
{
    const QJsonDocument document = results.size() == 1
                                       ? QJsonDocument(results.first().toObject())
                                       : QJsonDocument(results);
    printLine(QString::fromUtf8(document.toJson(QJsonDocument::Compact)));
}

} // namespace

int runSql(const Arguments& arguments)
{
    const QString file = arguments.file();
    const QStringList statements = arguments.words.mid(1);
    if (statements.isEmpty())
        throw UsageError{u"Indiquez au moins une instruction."_s};
    const bool json = arguments.has(u"--json"_s);
    QJsonArray results;
    try {
        jet::OpenOptions options;
        options.password = arguments.options.value(u"--mot-de-passe"_s);
        const auto database = jet::Database::Open(file, options);
        for (const QString& statement : statements) {
            if (json)
                results.append(runJson(*database, statement));
            else
                runPlain(*database, statement, arguments.has(u"--csv"_s));
        }
    } catch (const jet::Error& error) {
        if (json) {
            results.append(QJsonObject{
                {u"erreur"_s, QJsonObject{{u"numero"_s, error.number()}, {u"texte"_s, error.description()}}}});
            printJson(results);
        } else {
            printError(u"Erreur "_s + QString::number(error.number()) + u" : "_s + error.description());
        }
        return Failure;
    }
    if (json)
        printJson(results);
    return Success;
}

} // namespace cli
