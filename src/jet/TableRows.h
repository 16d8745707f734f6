// The rows of one table, in the order of an index or of the row identifiers.
#pragma once

#include "jet/Definitions.h"
#include "jet/RowSet.h"

#include <map>

namespace jet {

/// One stands on a row identifier; the neighbours are found through the index each time the
/// direction changes or something was written, and by stepping on otherwise.
class TableRows : public RowSet {
public:
    enum class Comparison { Equal, Greater, GreaterOrEqual, Less, LessOrEqual };

    TableRows(Store& store, const TableDef& table);

    /// The order from now on; nullptr gives the order of the row identifiers. Stands on the first
    /// row.
    void setIndex(const Index* index);
    /// Stands on the first row (the last one for "<" and "<=") that compares so with the keys in
    /// the order of the index; false when there is none, and then on no row.
    bool seek(Comparison comparison, const QVariantList& keys);
    /// Stands on the first row for which the condition, written on columns `x."Name"`, holds.
    bool find(const QString& condition);

    void open() override;
    void moveFirst() override;
    void moveLast() override;
    void moveNext() override;
    void movePrevious() override;
    qint64 position() override;
    void setPosition(qint64) override;
    qint64 count() override;
    QVariant value(int column) override;
    qint64 rowId(int) const override;
    void removeCurrent() override {}
    void append(qint64) override {}
    bool standOn(qint64 rowId) override;
    void currentChanged() override { m_keptKeys.clear(); }
    void finishReading() override;

protected:
    bool isEmpty() override;

private:
    /// What the rows are ordered by; the row identifier is always the last one.
    struct Key {
        QString sql;
        DataType type = DataType::Long;
        bool descending = false;
    };
    /// A run of rows within the order, reached by one statement: those with the keys before `level`
    /// as given, and the key at `level` equal to, beyond, without regard to (NotNull) or Null.
    struct Segment {
        enum Kind { All, Equal, Beyond, NotNull, Null } kind;
        int level;
    };

    Statement& statement(Segment segment);
    QString conditions(Segment segment) const;
    QString order(int fromKey) const;
    void bindKeys(Statement& statement, Segment segment);
    void
    addBeyond(int level); ///< To m_pending: the runs behind the first `level` keys, nearest first.
    void addBeyondKey(int level);
    bool enterNext();
    void start(bool backward, QVariantList keys, std::vector<Segment> segments);
    void walk(bool backward);
    bool readKeys(); ///< Into m_keptKeys; false when the row is gone.
    QVariant readLong(int column);
    void forgetRow();

    TableDef m_table;
    QString m_rowIdSql;
    QString m_columnsSql; ///< All columns but long binary ones, the row identifier first.
    std::vector<int> m_columnPlaces; ///< Of each column in there; -1 for a long binary one.
    std::vector<Key> m_keys;
    std::map<int, Statement> m_statements; ///< By segment and direction, of the current order.
    std::map<int, Statement> m_longs;      ///< Readers of long binary columns.
    Statement m_keyReader;
    Statement m_rowReader;

    qint64 m_rowId = 0;
    Statement* m_current = nullptr; ///< Holds the values of the current row.
    bool m_walking = false;         ///< m_current can be stepped on, in the direction m_backward.
    bool m_backward = false;
    QVariantList m_walkKeys;
    std::vector<Segment> m_pending;
    QVariantList m_keptKeys; ///< Of the current row; read before a write, which may delete it.
};

} // namespace jet
