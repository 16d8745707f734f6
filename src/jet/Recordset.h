// Rows of a table or of a statement.
#pragma once

#include "jet/Compile.h"
#include "jet/Types.h"

#include <QVariant>
#include <memory>
#include <vector>

namespace jet {

class Database;

/// The open rows of a table (Index, Seek) or of a statement.
///
/// The rows of a keyed statement are a list of row identifiers, filled as far as one has moved; values are
/// read when asked. No cursor of the store is held while something is written. Column
/// names are case-blind; a value is typed as Types.h says, Null is an invalid QVariant.
class Recordset {
public:
    ~Recordset();
    Recordset(const Recordset&) = delete;
    Recordset& operator=(const Recordset&) = delete;

    RecordsetType Type() const;
    bool Updatable() const;
    void Close();
    void Requery(); ///< Runs the statement again.

    // --- Columns -----------------------------------------------------------------------------
    int FieldCount() const;
    const OutputColumn& FieldAt(int position) const; ///< 3265 outside.
    int FieldIndex(QStringView name) const;          ///< -1 when absent.

    // --- Position ----------------------------------------------------------------------------
    bool BOF() const;
    bool EOF_() const; ///< EOF is a macro of the C library.
    void MoveFirst();
    void MoveLast();
    void MoveNext();     ///< 3021 beyond EOF.
    void MovePrevious();
    void Move(qint64 rows);
    qint64 AbsolutePosition() const; ///< From 0; -1 without a current record; 3251 for a table.
    void SetAbsolutePosition(qint64 position); ///< Any row of a keyed set at the same cost.
    /// Rows visited so far for a dynaset or snapshot, all once MoveLast ran; all rows of a table.
    qint64 RecordCount();

    // --- Values ------------------------------------------------------------------------------
    QVariant Value(QStringView name) const; ///< 3265 unknown, 3021 no current record.
    QVariant Value(int position) const;
    /// Up to `count` rows from the current one on, moving behind them. Each row is its values in
    /// column order. 3167 when one was deleted meanwhile.
    std::vector<std::vector<QVariant>> GetRows(qint64 count);
    /// The row identifier of a source (by default the first) of the current row; 0 for none.
    qint64 RowId(int source = 0) const;

    // --- Editing -----------------------------------------------------------------------------
    /// 3326 for a set that is not updatable; AddNew and Delete also for one of several tables.
    void AddNew();
    void Edit();
    /// 3020 without AddNew or Edit; 3421 not convertible; 3163 too wide; 3164 an AutoNumber that stands; 3326
    /// an expression. The rest is checked by Update, which leaves the draft open when it refuses it.
    void SetValue(QStringView name, const QVariant& value);
    void Update(); ///< After AddNew the current record stays the old one; MoveToLastModified leads to the new.
    void CancelUpdate();
    void Delete();
    void MoveToLastModified();
    bool Editing() const;
    /// Long values in pieces. The first call after Edit or AddNew replaces, later ones append.
    void AppendChunk(QStringView name, const QVariant& piece);
    /// `count` bytes (LongBinary) or characters (Memo) from `offset` on.
    QVariant GetChunk(QStringView name, qint64 offset, qint64 count) const;
    qint64 FieldSize(QStringView name) const; ///< In bytes or characters; 0 for Null.

    // --- Table type --------------------------------------------------------------------------
    QString Index() const;
    void SetIndex(const QString& name); ///< 3015 unknown, 3251 not a table; "" for none.
    /// Finds the first record by comparison ("=", ">", ">=", "<", "<=") on the current index; NoMatch tells.
    void Seek(const QString& comparison, const QVariantList& keys);
    bool NoMatch() const;

    // --- Search in a statement ---------------------------------------------------------------
    void FindFirst(const QString& criterion); ///< A condition of the dialect on the columns.

private:
    friend class Database;
    struct Private;
    explicit Recordset(std::unique_ptr<Private> p);
    std::unique_ptr<Private> d;
};

} // namespace jet
