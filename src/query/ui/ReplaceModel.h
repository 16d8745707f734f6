// The replacements of one window as a grid to fill.
#pragma once

#ifndef Q_MOC_RUN // which reads plain letters only
#include "query/BatchReplace.h"
#include "query/Structure.h"
#endif
#include "query/ui/CriterionEditors.h"

#include <QAbstractTableModel>

namespace query {

struct Replacement;
class Structure;

/// "Nom du champ", "Nouvelle Valeur".
class ReplaceModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { Field, Value, ColumnCount };

    explicit ReplaceModel(const Structure& structure, QObject* parent = nullptr)
        : QAbstractTableModel(parent), m_structure(structure)
    {
    }

    const QList<Replacement>& rows() const { return m_rows; }
    /// Gives the row of a column of the module, added when it is not there; -1 for one that cannot be replaced.
    int add(const QString& path);
    void remove(int row);
    void setValue(int row, const QString& value, bool expression);
    void setErrors(const QHash<int, QString>& errors);
    const Node* field(int row) const;
    QString caption(int row) const;

    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : int(m_rows.size()); }
    int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : int(ColumnCount); }
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
    void changed();

private:
    const Structure& m_structure;
    QList<Replacement> m_rows;
    QHash<int, QString> m_errors;
};

/// Values as the field's type wants them; a taxon also offers the accepted name.
class ReplaceDelegate : public CriterionDelegate {
    Q_OBJECT
public:
    using CriterionDelegate::CriterionDelegate;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

} // namespace query
