#include "reference/ReferenceList.h"

#include "jet/SqlText.h"

#include <QLoggingCategory>

namespace reference {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(listLog, "herbora.reference")

} // namespace

ReferenceList::ReferenceList(const ReferenceContext& context, const QString& table)
    : m_context(context), m_table(table)
{
}

ReferenceList::~ReferenceList() = default;

/// What reads a name for a window must not throw; what is about to write stops at a row that cannot be read.
bool ReferenceList::position(qint32 id) const
{
    try {
        return seek(id);
    } catch (const jet::Error& error) {
        m_current = 0;
        m_rows.reset();
        if (m_context.database.inOperation())
            throw;
        qCWarning(listLog).noquote() << m_table << id << error.number() << error.description();
        return false;
    }
}

bool ReferenceList::seek(qint32 id) const
{
    m_current = 0;
    if (id <= 0)
        return false;
    if (!m_rows) {
        m_rows = m_context.database.OpenRecordset(m_table, jet::RecordsetType::Table);
        m_rows->SetIndex(u"PrimaryKey"_s);
    }
    m_rows->Seek(u"="_s, {id});
    if (m_rows->NoMatch())
        return false;
    m_current = id;
    return true;
}

QVariant ReferenceList::value(const QString& column) const
{
    try {
        return m_current > 0 ? m_rows->Value(column) : QVariant();
    } catch (const jet::Error& error) {
        if (m_context.database.inOperation())
            throw;
        qCWarning(listLog).noquote() << m_table << column << error.number() << error.description();
        return {};
    }
}

qint32 ReferenceList::write(qint32 id, const QList<QPair<QString, QVariant>>& values)
{
    const auto rows = m_context.database.OpenRecordset(m_table, jet::RecordsetType::Table);
    rows->SetIndex(u"PrimaryKey"_s);
    const QString time = now();
    if (id > 0) {
        rows->Seek(u"="_s, {id});
        if (rows->NoMatch())
            jet::fail(3167);
        rows->Edit();
    } else {
        rows->AddNew();
        rows->SetValue(u"DateCreate", time);
    }
    for (const auto& [column, value] : values)
        rows->SetValue(column, value);
    rows->SetValue(u"DateModify", time);
    rows->Update();
    rows->MoveToLastModified();
    return rows->Value(idColumn()).toInt();
}

Found ReferenceList::search(const QString& statement, const QString& pattern) const
{
    Found found;
    const auto run = [&](const QString& text) {
        const auto rows = m_context.database.OpenRecordset(text);
        for (; !rows->EOF_(); rows->MoveNext()) {
            found.ids << rows->Value(0).toInt();
            found.names << rows->Value(1).toString();
        }
    };
    run(statement);
    if (found.ids.isEmpty() && !pattern.isEmpty() && !pattern.contains(u'*'))
        run(QString(statement).replace(jet::texte(pattern), jet::texte(pattern + u'*')));
    return found;
}

void takeOver(editing::Cl_Editions& form, const editing::Cl_Editions& fresh)
{
    for (const auto& field : form) {
        if (const editing::Cl_Edition* now = fresh.Item(field->champ()))
            field->ChpEdition()->value = now->value();
        field->ChpEdition()->Changed = false;
        field->setTextError({});
    }
}

QString quotedName(const QString& name)
{
    return u'"' + name + u'"';
}

} // namespace reference
