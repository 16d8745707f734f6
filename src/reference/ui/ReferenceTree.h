// The trees of the taxa and of the localities.
#pragma once

#include "reference/ui/ReferenceControl.h"

#include <QTreeView>

namespace reference {

class LazyTreeModel;
class TreeSource;
struct TreeRow;

/// Loaded as it is unfolded. Rows dragged onto another one, or moved by the command "move", go there by the rules of their
/// list.
class ReferenceTree : public ReferenceControl {
    Q_OBJECT
public:
    QAbstractItemView& view() const override;
    QTreeView& tree() const { return *m_view; }
    LazyTreeModel& model() const { return *m_model; }
    qint32 currentId() const override;
    QList<qint32> selectedIds() const override; ///< Not those under another selected one.
    QStringList selectedNames() const override;
    bool showRow(qint32 id) override;
    void reload() override;
    void move(const QList<qint32>& ids, qint32 target);

protected:
    ReferenceTree(std::shared_ptr<ReferenceWorld> world, int type, std::unique_ptr<TreeSource> source, const QIcon& icon,
                  const QIcon& mapIcon, QWidget* parent);

    QStringList further() const override;
    bool isPossible(const QString& key) const override;
    const TreeRow& currentRow() const;
    virtual void moveRows(const QList<qint32>& ids, qint32 target) = 0;
    void databaseBack() override;

private:
    void chooseTarget();
    void connectModel();
    void noteCurrent();

    LazyTreeModel* m_model;
    QTreeView* m_view;
    qint32 m_told = 0; ///< The row told last as the current one.
    bool m_reloading = false;
};

/// "Taxons".
class Taxons : public ReferenceTree {
    Q_OBJECT
public:
    explicit Taxons(std::shared_ptr<ReferenceWorld> world, QWidget* parent = nullptr);

protected:
    QStringList further() const override;
    bool isPossible(const QString& key) const override;
    void add() override;
    bool confirmDelete(const QList<qint32>& ids) override;
    void deleteRows(const QList<qint32>& ids) override;
    void fillAddMenu(QMenu& menu) override;
    void moveRows(const QList<qint32>& ids, qint32 target) override;

private:
    void addUnder(qint32 parent, int rank);
    qint32 parentFor(int rank) const;
};

/// "Localités" (the plain letters are for the meta-object compiler).
class PlaceTree : public ReferenceTree {
    Q_OBJECT
public:
    explicit PlaceTree(std::shared_ptr<ReferenceWorld> world, QWidget* parent = nullptr);

protected:
    bool isPossible(const QString& key) const override;
    void add() override;
    bool confirmDelete(const QList<qint32>& ids) override;
    void deleteRows(const QList<qint32>& ids) override;
    void moveRows(const QList<qint32>& ids, qint32 target) override;
};

} // namespace reference
