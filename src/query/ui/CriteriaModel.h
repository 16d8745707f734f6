// The criteria of a query as a tree for views.
#pragma once

#ifndef Q_MOC_RUN // which reads plain letters only
#include "query/Query.h"
#endif

#include <QAbstractItemModel>

namespace query {

class Query;

/// Rows beneath rows are groups. The cells are "Liaison", "Champ", "Opérateur", "Valeur"; rows that cannot run are red.
class CriteriaModel : public QAbstractItemModel {
    Q_OBJECT
public:
    enum Column { Link, Field, Operator, Value, ColumnCount };
    /// The value as the query keeps it, its values one a line.
    static constexpr int PlainRole = Qt::UserRole + 1;

    using QAbstractItemModel::QAbstractItemModel;
    void setQuery(Query* query); ///< Null for none.
    void refresh();              ///< The query changed.
    Query* query() const { return m_query; }
    /// Reasons by rows.
    void setErrors(const QHash<int, QString>& errors);
    QString error(int row) const { return m_errors.value(row); }

    /// The position of a row in the query; -1 for none.
    int rowOf(const QModelIndex& index) const { return index.isValid() ? int(index.internalId()) : -1; }
    QModelIndex indexOf(int row, int column = 0) const;
    const Node* field(const QModelIndex& index) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& = {}) const override { return ColumnCount; }
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QStringList mimeTypes() const override;
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

Q_SIGNALS:
    /// Fields were dropped: on a row (which gets children), or behind one (-1: at the end).
    void fieldsDropped(const QStringList& paths, int row, bool onto);

private:
    QList<int> children(int parent) const;
    int parentOf(int row) const;
    QString cell(const Criterion& row, int column) const;

    Query* m_query = nullptr;
    QList<Criterion> m_rows; ///< As the views were told.
    QHash<int, QString> m_errors;
};

} // namespace query
