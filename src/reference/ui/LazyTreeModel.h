// A reference tree for a view, of which only what was unfolded is read.
#pragma once

#include "reference/ui/TreeSource.h"

#include <QAbstractItemModel>
#include <QHash>
#include <QIcon>
#include <QTimer>

namespace reference {

/// A node's children are read when it is unfolded: a first page at once, the rest a page at a time between the events of
/// the window, so that a genus of thousands of species opens as fast as one of ten. While the database is away nothing is
/// read; what was read is shown.
class LazyTreeModel : public QAbstractItemModel {
    Q_OBJECT
public:
    enum Role { IdRole = Qt::UserRole + 1, KeyRole, RankRole };

    LazyTreeModel(std::unique_ptr<TreeSource> source, QIcon icon, QIcon mapIcon, QObject* parent = nullptr);
    ~LazyTreeModel() override;

    const TreeSource& source() const { return *m_source; }
    const TreeRow& rowAt(const QModelIndex& index) const; ///< The top for an invalid index.
    QModelIndex topIndex() const; ///< Of the node above all; invalid where there is none.
    /// Where a row stands, reading what leads to it; invalid when it is not there.
    QModelIndex locate(qint32 id);
    QModelIndex loaded(qint32 id) const; ///< The same among what was read.
    bool isFilling() const { return m_timer.isActive(); }

    void reload();         ///< Everything is read anew when it is unfolded again.
    void rowChanged(qint32 id); ///< A row is new, was renamed or moved.
    void rowDeleted(qint32 id);
    void refreshSynonyms(); ///< Those of a name that was deleted are names of their own again.
    void resume(); ///< The database is back.

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& = {}) const override { return 1; }
    bool hasChildren(const QModelIndex& parent = {}) const override;
    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

    bool movable = true; ///< Rows may be dragged.

Q_SIGNALS:
    void moveWanted(const QList<qint32>& ids, qint32 target);
    void failed(const QString& description);

private:
    struct Node;

    Node* nodeAt(const QModelIndex& index) const; ///< Null above the top node.
    QModelIndex indexOf(const Node* node) const;
    void readPage(Node& node);
    void startReading(Node& node);
    void fillFurther();
    void forget(Node& node);
    void remove(Node& node);
    void insert(Node& parent, const TreeRow& row);
    void reorder(Node& node);
    int placeOf(const Node& parent, const TreeRow& row, const Node* except) const;
    void renumber(Node& parent, size_t from);
    void arrowsChanged();
    template<typename Work> bool guarded(Work&& work) const;

    std::unique_ptr<TreeSource> m_source;
    QIcon m_icon, m_mapIcon;
    std::unique_ptr<Node> m_top;
    QHash<qint32, Node*> m_byId;
    QList<Node*> m_filling; ///< Nodes whose children are not all read yet.
    QTimer m_timer;
    QList<qint32> m_changed; ///< Rows that changed while the database was away.
};

} // namespace reference
