// The rows of a module's table as its add-in reads them.
#pragma once

#include "addin/gtAddin.h"
#include "jet/Database.h"
#include "jet/Recordset.h"

namespace app {

/// Opened at the first use, so that a module whose rows nobody reads costs nothing. Failures end the rows; they are
/// logged and not thrown into the add-in.
class ModuleRows : public addin::Rows {
public:
    ModuleRows(jet::Database& database, const QString& module) : m_database(database), m_module(module) {}

    bool atEnd() const override;
    void moveFirst() override;
    void moveNext() override;
    QVariant value(const QString& column) const override;

private:
    jet::Recordset& rows() const;

    jet::Database& m_database;
    QString m_module;
    mutable std::unique_ptr<jet::Recordset> m_rows;
};

} // namespace app
