#include "app/ReadyStructures.h"

#include "data/FieldType.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>
#include <map>

namespace app {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(structuresLog, "herbora.structures")

/// -1 for a name that is no type.
int typeOf(const QString& name)
{
    for (int code = 0; code <= data::LienCourant; ++code) {
        if (!name.isEmpty() && data::nameOfType(code) == name)
            return code;
    }
    return -1;
}

QStringList texts(const QJsonValue& value)
{
    QStringList list;
    const QJsonArray items = value.toArray();
    for (const QJsonValue& item : items)
        list << item.toString();
    return list;
}

data::FieldRecord fieldOf(const QJsonObject& from, int index)
{
    data::FieldRecord field;
    field.caption = from[u"nom"].toString();
    field.column = from[u"colonne"].toString(field.caption);
    field.type = typeOf(from[u"type"].toString());
    field.index = index;
    field.help = from[u"aide"].toString();
    field.rule = from[u"regle"].toString();
    field.ruleText = from[u"message"].toString();
    field.descriptors = texts(from[u"descripteurs"]);
    if (from[u"obligatoire"].toBool())
        field.flags |= data::Obligatoire;
    if (from[u"unique"].toBool())
        field.flags |= data::Unique;
    return field;
}

data::ModuleRecord moduleOf(const QJsonObject& from)
{
    data::ModuleRecord module;
    module.name = from[u"nom"].toString();
    module.label = from[u"objet"].toString(module.name);
    module.help = from[u"aide"].toString();
    module.shortLabel = from[u"abrege"].toString();
    module.version = u"1.0"_s;
    if (from[u"unParIndividu"].toBool())
        module.flags |= data::Unique;
    const QJsonArray fields = from[u"champs"].toArray();
    for (const QJsonValue& field : fields)
        module.fields << fieldOf(field.toObject(), int(module.fields.size()));
    return module;
}

/// Why a structure cannot be used; empty when it can.
QString fault(const ReadyStructure& structure)
{
    if (structure.name.isEmpty() || structure.modules.isEmpty())
        return u"sans nom ou sans modules"_s;
    for (const data::ModuleRecord& module : structure.modules) {
        if (module.name.isEmpty() || module.fields.isEmpty())
            return u"module sans nom ou sans champs"_s;
        for (const data::FieldRecord& field : module.fields) {
            if (field.caption.isEmpty() || field.type < 0)
                return u"%1 : champ « %2 » sans nom ou d'un type inconnu"_s.arg(module.name, field.caption);
        }
    }
    return {};
}

} // namespace

QList<ReadyStructure> readyStructures(const QString& folder)
{
    std::multimap<int, ReadyStructure> found;
    const QFileInfoList files = QDir(folder).entryInfoList({u"*.json"_s}, QDir::Files, QDir::Name);
    for (const QFileInfo& info : files) {
        QFile file(info.filePath());
        QJsonParseError error;
        const bool open = file.open(QIODevice::ReadOnly);
        const QJsonObject root = QJsonDocument::fromJson(open ? file.readAll() : QByteArray(), &error).object();
        ReadyStructure structure{root[u"nom"].toString(), root[u"description"].toString(), {}};
        const QJsonArray modules = root[u"modules"].toArray();
        for (const QJsonValue& module : modules)
            structure.modules << moduleOf(module.toObject());
        const QString wrong = error.error ? error.errorString() : fault(structure);
        if (wrong.isEmpty())
            found.emplace(root[u"rang"].toInt(), structure);
        else
            qCWarning(structuresLog).noquote() << info.filePath() << wrong;
    }
    QList<ReadyStructure> sorted;
    for (const auto& [rank, structure] : found)
        sorted << structure;
    return sorted;
}

} // namespace app
