// A query tab of the whole program.
#pragma once

#include "WindowFixture.h"

#include "app/ui/QueryDesk.h"
#include "app/ui/Workplace.h"
#include "query/ui/QueryTab.h"

namespace support {

class QueryWindowTest : public WindowTest {
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        makeProject();
        openProject();
    }
    app::Workplace& place() { return *window().findChild<app::Workplace*>(); }
    app::QueryDesk& desk()
    {
        for (const auto& one : window().desks()) {
            if (auto* found = dynamic_cast<app::QueryDesk*>(one.get()))
                return *found;
        }
        throw std::runtime_error("no desk of queries");
    }
    query::QueryTab& newQuery(const QString& module = QStringLiteral("Individus"))
    {
        query::QueryTab* tab = desk().open(module, 0);
        settle();
        return *tab;
    }
    /// The path of a field of the root, or of another module, by its columns.
    static QString field(query::QueryTab& tab, const QStringList& columns, const QString& module = {})
    {
        return tab.query().structure().PathFromPermanent(module, columns.join(query::pathSeparator));
    }
    void run(query::QueryTab& tab)
    {
        tab.execute();
        settle();
    }
    /// The shown page without its first two columns, one text a row.
    static QStringList shownRows(query::QueryTab& tab)
    {
        QStringList rows;
        const query::ResultModel& model = tab.pane().data().model();
        for (int row = 0; row < model.rowCount(); ++row) {
            QStringList cells;
            for (int column = 2; column < model.columnCount(); ++column)
                cells << model.index(row, column).data().toString();
            rows << cells.join(QLatin1Char('|'));
        }
        return rows;
    }
};

} // namespace support
