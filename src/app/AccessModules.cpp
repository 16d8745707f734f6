#include "app/AccessModules.h"

#include "data/CoreModules.h"
#include "data/CoreSchema.h"
#include "jet/Recordset.h"

namespace app {

using namespace Qt::StringLiterals;

namespace {

const QString moduleType = u"Addin"_s;
constexpr int marked = -1;

struct Known {
    QString name;
    QString provider;
    bool foreign = false; ///< Nobody here provides it.
};

bool isBuiltIn(QStringView module)
{
    return jet::sameName(module, data::moduleIndividus) || jet::sameName(module, data::moduleDéterminations);
}

class Adoption {
public:
    Adoption(jet::Database& database, const QStringList& libraries)
        : m_rows(database.OpenRecordset(u"SELECT PGTableDefs.* FROM PGTableDefs"_s)), m_libraries(libraries)
    {
    }

    QStringList run()
    {
        forEachRow([this] { readModule(); });
        forEachRow([this] { adopt(); });
        return m_remarks;
    }

private:
    QString text(QStringView column) const { return m_rows->Value(column).toString(); }

    void forEachRow(const std::function<void()>& work)
    {
        if (m_rows->BOF() && m_rows->EOF_())
            return;
        for (m_rows->MoveFirst(); !m_rows->EOF_(); m_rows->MoveNext())
            work();
    }

    void readModule()
    {
        m_lastIndex = qMax(m_lastIndex, m_rows->Value(u"Index").toInt());
        if (text(u"Type") != moduleType)
            return;
        Known module{text(u"NomModule"), text(u"ModuleConnexion")};
        module.foreign = !isBuiltIn(module.name) && module.provider != data::providerUser
                         && !m_libraries.contains(module.provider, Qt::CaseInsensitive);
        m_modules.append(module);
        if (module.foreign)
            m_remarks += u"Module « %1 » : rien ici ne fournit « %2 » ; il est gardé comme module de l'utilisateur."_s.arg(
                module.name, module.provider);
    }

    const Known* module(QStringView name) const
    {
        const auto found = std::find_if(m_modules.begin(), m_modules.end(),
                                        [name](const Known& one) { return jet::sameName(one.name, name); });
        return found == m_modules.end() ? nullptr : &*found;
    }

    void set(QStringView column, const QVariant& value)
    {
        m_rows->Edit();
        m_rows->SetValue(column, value);
        m_rows->Update();
    }

    void adopt()
    {
        const QString name = text(u"NomModule");
        const QString provider = text(u"ModuleConnexion");
        const Known* owner = module(name);
        if (owner && owner->foreign
            && (text(u"Type") == moduleType || provider.isEmpty() || jet::sameName(provider, owner->provider)))
            set(u"ModuleConnexion", data::providerUser);
        if (m_rows->Value(u"Index").toInt() == marked) {
            set(u"Index", ++m_lastIndex);
            m_remarks += u"Dictionnaire : « %1 » du module « %2 » était marqué pour être supprimé ; il est gardé."_s.arg(
                text(u"Table"), name);
        }
        const int flags = m_rows->Value(u"Flags").toInt();
        if (!owner && !isBuiltIn(name) && flags & data::Connecté) {
            set(u"Flags", flags & ~data::Connecté);
            m_remarks += u"Dictionnaire : « %1 » appartient au module « %2 », qui n'y figure pas ; il est gardé."_s.arg(
                text(u"Table"), name);
        }
    }

    std::unique_ptr<jet::Recordset> m_rows;
    QStringList m_libraries;
    QList<Known> m_modules;
    QStringList m_remarks;
    int m_lastIndex = 0;
};

/// What the rows or the definition of an old table do not allow is said; a full disk ends the conversion.
void attempt(QStringList& remarks, const QString& what, const std::function<void()>& work)
{
    static const QList<int> refusals{3010, 3022, 3058, 3125, 3163, 3190, 3191, 3219, 3264, 3265, 3281, 3283, 3284, 3314,
                                     3315, 3316, 3317, 3320, 3409, 3421};
    try {
        work();
    } catch (const jet::Error& error) {
        if (!refusals.contains(error.number()))
            throw;
        remarks += u"Mise à jour de la structure, %1 : %2"_s.arg(what, error.description());
    }
}

void alignField(jet::Database& database, const QString& table, const jet::Field& wanted, QStringList& remarks)
{
    const jet::Field* known = database.schema().table(table)->field(wanted.Name);
    const QString what = u"champ « %1 » de la table « %2 »"_s.arg(wanted.Name, table);
    if (!known)
        return attempt(remarks, what, [&] { database.AppendField(table, wanted); });
    jet::Field better = *known;
    if (better.DefaultValue.isEmpty())
        better.DefaultValue = wanted.DefaultValue;
    better.AllowZeroLength = better.AllowZeroLength || wanted.AllowZeroLength;
    if (better.DefaultValue != known->DefaultValue || better.AllowZeroLength != known->AllowZeroLength)
        attempt(remarks, what, [&] { database.ChangeField(table, better); });
}

} // namespace

QStringList alignCoreTables(jet::Database& database)
{
    QStringList remarks;
    for (const jet::TableDef& wanted : data::coreTables()) {
        if (!database.schema().table(wanted.Name))
            continue;
        for (const jet::Field& field : wanted.Fields)
            alignField(database, wanted.Name, field, remarks);
        for (const jet::Index& index : wanted.Indexes) {
            if (!database.schema().table(wanted.Name)->index(index.Name))
                attempt(remarks, u"index « %1 » de la table « %2 »"_s.arg(index.Name, wanted.Name),
                        [&] { database.AppendIndex(wanted.Name, index); });
        }
    }
    return remarks;
}

QStringList adoptModules(jet::Database& database, const QStringList& libraries)
{
    const jet::TableDef* table = database.schema().table(u"PGTableDefs"_s);
    if (!table)
        return {u"Le fichier n'a pas de dictionnaire d'Herbora : ses tables sont gardées, mais aucune n'est un module."_s};
    for (const QString& column : {u"Type"_s, u"Index"_s, u"Table"_s, u"NomModule"_s, u"ModuleConnexion"_s, u"Flags"_s}) {
        if (!table->field(column))
            return {u"Le dictionnaire n'a pas de champ « %1 » ; il est gardé tel quel."_s.arg(column)};
    }
    return Adoption(database, libraries).run();
}

} // namespace app
