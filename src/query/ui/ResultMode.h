// How the result of a query is looked at: as rows, as pictures, as points on a map.
#pragma once

#include "platform/ui/DocumentTab.h"

#include <QList>
#include <QRectF>
#include <QVariant>
#include <QWidget>
#include <functional>

namespace jet {
class Database;
}

namespace query {

/// Records of a result. A mode that knows only one of the two kinds leaves the other empty.
struct ResultSelection {
    QList<qint32> records;     ///< Identifiers in the root module of the query ("ID " and the module).
    QList<qint32> individuals; ///< Identifiers in `Individus`.
    bool isEmpty() const { return records.isEmpty() && individuals.isEmpty(); }
    bool operator==(const ResultSelection&) const = default;
};

/// The result that every mode of a window shows. It lives as long as the modes; what reads from the project is called
/// only while the database is the thread's of the windows (TaskRunner::isRunning() is false), or as part of a task.
class ResultSource {
public:
    virtual ~ResultSource() = default;
    virtual jet::Database& database() const = 0;
    virtual QString module() const = 0; ///< Root of the query.
    virtual QString name() const = 0;   ///< Of the query.
    /// The whole statement of a mode ("data", "picture", "map"; their columns are told at StatementBuilder) as the
    /// query was when it ran last; empty when it has none. Cheap; reads nothing.
    virtual QString statement(const QString& mode) const = 0;

    virtual qint64 rowCount() const = 0; ///< Found so far.
    virtual bool isComplete() const = 0; ///< Every row is found.
    /// Identifiers, row by row, of the rows found; a record stands as often as it has rows.
    virtual QList<qint32> records() const = 0;
    virtual QList<qint32> individuals() const = 0;
    virtual QStringList headers() const = 0;               ///< Of the columns shown.
    virtual QVariant value(qint64 row, int column) const = 0; ///< Reads the row when needed; Null when it cannot.
    virtual QString text(qint64 row, int column) const = 0;   ///< The same as a cell shows it.
};

/// One way to look at the result. Made when it is first shown, destroyed before the project is closed.
///
/// The window runs the query, calls `rowsReplaced` and then `rowsFound` until the result is complete; a mode that is
/// hidden is told nothing and gets `rowsReplaced` when it comes up and the rows have changed since. Long work of its
/// own goes through the task runner that its factory was given.
class ResultMode : public QWidget {
    Q_OBJECT
public:
    explicit ResultMode(ResultSource& source, QWidget* parent = nullptr) : QWidget(parent), m_source(source) {}

    virtual QString key() const = 0; ///< "data", "picture", "map".
    /// The query ran (again), or there is no result any more: everything shown goes.
    virtual void rowsReplaced() = 0;
    /// Further rows were found; the last call finds the source complete.
    virtual void rowsFound() {}
    /// Values of some records changed, the rows are the same; what is shown of them is read again.
    virtual void valuesChanged(const QStringList& modules) { Q_UNUSED(modules) }
    /// Marks these records and shows the first of them. Says nothing back.
    virtual void setSelection(const ResultSelection& selection) = 0;
    virtual ResultSelection selection() const = 0;

    virtual QString statusText() const { return {}; }
    virtual bool can(platform::TabCommand command) const
    {
        Q_UNUSED(command)
        return false;
    }
    virtual void run(platform::TabCommand command) { Q_UNUSED(command) }

Q_SIGNALS:
    void selectionChanged(); ///< By the user.
    void activated(const query::ResultSelection& record); ///< Double click or Return: the record is to be edited.
    /// "insertmap": the query is to be narrowed to the places that were chosen (`ID Localités`).
    void insertPlacesWanted(const QList<qint32>& localities);
    /// The same by a rectangle of degrees: longitudes along x, latitudes along y (Query::insertRectangle).
    void insertRectangleWanted(const QRectF& degrees);
    void stateChanged(); ///< Status text or what is possible.
    void failed(const QString& description);

protected:
    ResultSource& source() const { return m_source; }

private:
    ResultSource& m_source;
};

/// Makes a mode. The window shows a disabled button for a mode that no factory makes.
struct ResultModeFactory {
    QString key;
    std::function<ResultMode*(ResultSource& source, QWidget* parent)> make;
};

} // namespace query
