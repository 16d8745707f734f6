#include "app/HostBase.h"

#include "app/References.h"
#include "app/Session.h"
#include "jet/Recordset.h"
#include "jet/SqlText.h"

#include <QFileInfo>
#include <QLoggingCategory>
#include <QMimeDatabase>

namespace app {

using namespace Qt::StringLiterals;
using jet::nom;

namespace {

Q_LOGGING_CATEGORY(hostLog, "herbora.addin.host")

/// The answer of the work; the neutral one when there is no project or it fails.
template<typename T, typename Work>
T answered(const Session& session, const char* callback, T neutral, Work work)
{
    if (!session.isOpen())
        return neutral;
    try {
        return work();
    } catch (const jet::Error& error) {
        qCWarning(hostLog).noquote() << callback << error.number() << error.description();
        return neutral;
    }
}

/// Forms hold yes/no values as texts.
QVariant formValue(const QVariant& stored)
{
    return stored.typeId() == QMetaType::Bool ? QVariant(stored.toBool() ? u"True"_s : u"False"_s) : stored;
}

std::unique_ptr<jet::Recordset> recordOf(const Session& session, const QString& table, const QString& columns,
                                         qint32 id)
{
    return session.database().OpenRecordset(u"SELECT "_s + columns + u" FROM "_s + nom(table) + u" WHERE "_s
                                            + nom(u"ID "_s + table) + u'=' + QString::number(id));
}

bool isQuery(const QString& statement)
{
    const QString begin = statement.trimmed();
    return begin.startsWith(u"select", Qt::CaseInsensitive) || begin.startsWith(u'(');
}

QList<QVariantList> rowsOf(jet::Recordset& rows)
{
    QList<QVariantList> result;
    for (; !rows.EOF_(); rows.MoveNext()) {
        QVariantList row;
        for (int column = 0; column < rows.FieldCount(); ++column)
            row << rows.Value(column);
        result << row;
    }
    return result;
}

} // namespace

HostBase::HostBase(Session& session) : m_session(session) {}

HostBase::~HostBase() = default;

// --- Records ---------------------------------------------------------------------------------------

bool HostBase::EditItem(const QString& key)
{
    return m_views && m_session.isOpen() && m_views->editRecord(key);
}

addin::TabEditions HostBase::GetEditObject(const QString& module, qint32 id)
{
    return answered(m_session, "GetEditObject", addin::TabEditions(), [&] {
        const data::ModuleRecord* definition = m_session.dictionary().module(module);
        if (!definition)
            return addin::TabEditions();
        const auto record = recordOf(m_session, definition->name, u"*"_s, id);
        if (record->EOF_())
            return addin::TabEditions();
        const addin::TabEditions fields = m_session.addins().fields(*definition);
        for (const addin::ChpEditionPtr& field : fields) {
            const int at = record->FieldIndex(field->champ);
            field->value = at < 0 ? QVariant() : formValue(record->Value(at));
            field->IDItem = id;
            field->IDIndividu = record->Value(u"ID Individus").toInt();
        }
        return fields;
    });
}

QVariant HostBase::Valeur(const QString& module, qint32 id, const QString& column)
{
    return answered(m_session, "Valeur", QVariant(), [&] {
        const auto record = recordOf(m_session, module, nom(column), id);
        return record->EOF_() ? QVariant() : record->Value(0);
    });
}

qint32 HostBase::Détermination(qint32 individu)
{
    return Valeur(data::moduleIndividus, individu, u"ID "_s + data::moduleDéterminations).toInt();
}

QString HostBase::Botaniste(qint32 id)
{
    const bool known = Valeur(u"Collecteurs"_s, id, u"ID Collecteurs"_s).isValid();
    return known ? m_session.references().context().names->botaniste(id) : QString::number(id);
}

QString HostBase::Localité(qint32 id)
{
    const bool known = Valeur(u"Localités"_s, id, u"ID Localités"_s).isValid();
    return known ? m_session.references().context().names->localité(id) : QString::number(id);
}

QString HostBase::Taxon(qint32 id)
{
    const bool known = Valeur(u"Taxons"_s, id, u"ID Taxons"_s).isValid();
    return known ? m_session.references().context().names->taxon(id) : QString::number(id);
}

// --- The project -----------------------------------------------------------------------------------

QString HostBase::GetFileName()
{
    return m_session.path();
}

QString HostBase::OLEFiletype(const QString& file)
{
    return QFileInfo(file).isFile() ? QMimeDatabase().mimeTypeForFile(file, QMimeDatabase::MatchContent).name()
                                    : QString();
}

QVariant HostBase::PropertyGet(const QString& kind, const QString& module, const QString& name)
{
    return answered(m_session, "PropertyGet", QVariant(),
                    [&] { return m_session.properties().value(kind, module, name); });
}

bool HostBase::PropertyLet(const QString& kind, const QString& module, const QString& name, const QString& value)
{
    return answered(m_session, "PropertyLet", false, [&] {
        m_session.properties().put(kind, module, name, value);
        return true;
    });
}

QList<QVariantList> HostBase::mdbase(const QString& statement, QString* error)
{
    if (error)
        error->clear();
    if (!m_session.isOpen()) {
        if (error)
            *error = u"Aucun projet n'est ouvert."_s;
        return {};
    }
    try {
        if (!isQuery(statement))
            return {{m_session.database().Execute(statement)}};
        return rowsOf(*m_session.database().OpenRecordset(statement));
    } catch (const jet::Error& failure) {
        qCWarning(hostLog).noquote() << "mdbase" << failure.number() << failure.description();
        if (error)
            *error = failure.description();
        return {};
    }
}

// --- The windows -----------------------------------------------------------------------------------

quintptr HostBase::Hwnd()
{
    return m_views ? m_views->windowHandle() : 0;
}

QString HostBase::CurrentSQL()
{
    return m_views && m_session.isOpen() ? m_views->currentStatement() : QString();
}

QString HostBase::ActiveModule()
{
    return m_views && m_session.isOpen() ? m_views->activeModule() : QString();
}

QString HostBase::ModeRun()
{
    return m_views && m_session.isOpen() ? m_views->mode() : QString();
}

int HostBase::CountSel()
{
    return int(SelectedIDItems().size());
}

QList<qint32> HostBase::SelectedIDItems()
{
    return m_views && m_session.isOpen() ? m_views->selectedRecords() : QList<qint32>();
}

QList<qint32> HostBase::AllIDItems()
{
    return m_views && m_session.isOpen() ? m_views->shownRecords() : QList<qint32>();
}

QList<qint32> HostBase::SelectedIDIndividu()
{
    const QList<qint32> records = SelectedIDItems();
    const QString module = ActiveModule();
    if (records.isEmpty() || jet::sameName(module, data::moduleIndividus))
        return records;
    return answered(m_session, "SelectedIDIndividu", QList<qint32>(), [&] {
        QList<qint32> individuals;
        for (const qint32 id : records) {
            const QVariant owner = Valeur(module, id, u"ID Individus"_s);
            if (owner.isValid() && !individuals.contains(owner.toInt()))
                individuals << owner.toInt();
        }
        return individuals;
    });
}

qint32 HostBase::Individu()
{
    const QList<qint32> individuals = SelectedIDIndividu();
    return individuals.isEmpty() ? 0 : individuals.first();
}

void HostBase::UpdateBase(const QString& module)
{
    if (m_views && m_session.isOpen())
        m_views->refresh(module);
}

bool HostBase::Wizard(const QString& title, addin::TabEditions& fields)
{
    editing::FormDialogue* dialogue = m_views && m_session.isOpen() ? m_views->form() : nullptr;
    if (!dialogue)
        return false;
    return answered(m_session, "Wizard", false, [&] {
        editing::Cl_Editions form(m_session.references().context());
        form.setTabedition({}, fields);
        return dialogue->edit(title, form, [](editing::Cl_Editions& typed) { return typed.valid(); });
    });
}

} // namespace app
