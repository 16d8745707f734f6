#include "app/ModuleRows.h"

#include <QLoggingCategory>

namespace app {

namespace {

Q_LOGGING_CATEGORY(rowsLog, "herbora.addin.rows")

/// The answer of the work, or the neutral one.
template<typename T, typename Work>
T trapped(const QString& module, T neutral, Work work)
{
    try {
        return work();
    } catch (const jet::Error& error) {
        qCWarning(rowsLog).noquote() << module << error.number() << error.description();
        return neutral;
    }
}

} // namespace

jet::Recordset& ModuleRows::rows() const
{
    if (!m_rows)
        m_rows = m_database.OpenRecordset(m_module, jet::RecordsetType::Table);
    return *m_rows;
}

bool ModuleRows::atEnd() const
{
    return trapped(m_module, true, [this] { return rows().EOF_(); });
}

void ModuleRows::moveFirst()
{
    // From the top, with what was written meanwhile.
    m_rows.reset();
    trapped(m_module, false, [this] { return rows().EOF_(); });
}

void ModuleRows::moveNext()
{
    trapped(m_module, false, [this] {
        if (!rows().EOF_())
            rows().MoveNext();
        return true;
    });
}

QVariant ModuleRows::value(const QString& column) const
{
    return trapped(m_module, QVariant(), [&] {
        const int at = rows().FieldIndex(column);
        return at < 0 || rows().EOF_() ? QVariant() : rows().Value(at);
    });
}

} // namespace app
