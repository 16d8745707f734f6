// The tree of an individual's records for a view.
#pragma once

#ifndef Q_MOC_RUN // which reads plain letters only
#include "editing/IndividualEditing.h"
#endif

#include <QAbstractItemModel>
#include <QIcon>

namespace editing {

struct EditNode;
class IndividualEditing;

/// Nothing is kept here: texts are asked for the rows that are seen. Records are dragged onto the record that becomes
/// their parent.
class EditTreeModel : public QAbstractItemModel {
    Q_OBJECT
public:
    EditTreeModel(IndividualEditing& editing, std::function<QIcon(const QString& module)> icon,
                  QObject* parent = nullptr);

    void rebuilt(); ///< The nodes are others now.
    void changed(const QString& key); ///< The text of a record.
    const EditNode* nodeAt(const QModelIndex& index) const;
    QModelIndex indexOf(const EditNode* node) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& = {}) const override { return 1; }
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

Q_SIGNALS:
    void moveWanted(const QString& key, const QString& target);

private:
    QVariant decoration(const EditNode& node) const;

    IndividualEditing& m_editing;
    std::function<QIcon(const QString&)> m_icon;
};

} // namespace editing
