// The list of the collectors as a grid.
#pragma once

#include "platform/ui/cl_MSFlexgrid.h"
#include "reference/ui/ReferenceControl.h"

#include <QAbstractTableModel>
#include <QTableView>

namespace jet {
class Recordset;
}

namespace reference {

/// Which collectors are listed.
struct CollectorFilter {
    enum Kind { All, Letter, Organisation } kind = All;
    QString text = {}; ///< A letter or a range ("[U-V]"); an organisation, empty for none at all.
    bool operator==(const CollectorFilter&) const = default;
};

/// Rows are read a page at a time as one scrolls.
class CollectorModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { Nom, Initiales, Bot, Organisme, ColumnCount };

    CollectorModel(std::shared_ptr<ReferenceWorld> world, QIcon icon, QObject* parent = nullptr);
    ~CollectorModel() override;

    void load(); ///< Once the database is here.
    void setFilter(const CollectorFilter& filter);
    const CollectorFilter& filter() const { return m_filter; }
    qint64 count() const { return m_count; } ///< Rows listed, read or not.
    qint32 idAt(int row) const { return row >= 0 && row < int(m_rows.size()) ? m_rows[size_t(row)].id : 0; }
    int rowOf(qint32 id); ///< Reads as far as it stands; -1 when it is not listed.

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;
    void setOrder(int column, Qt::SortOrder order); ///< For the next load.

private:
    struct Row {
        qint32 id;
        QString name, initials, organisation;
        bool botanist;
    };
    QString statement() const;
    void guarded(const std::function<void()>& work);
    void readPage();

    std::shared_ptr<ReferenceWorld> m_world;
    QIcon m_icon;
    CollectorFilter m_filter;
    int m_column = Nom;
    Qt::SortOrder m_order = Qt::AscendingOrder;
    std::unique_ptr<jet::Recordset> m_reading;
    std::vector<Row> m_rows;
    qint64 m_count = 0;
};

/// "Botaniste".
class Botaniste : public ReferenceControl {
    Q_OBJECT
public:
    explicit Botaniste(std::shared_ptr<ReferenceWorld> world, QWidget* parent = nullptr);

    void Refresh() { reload(); }
    QList<qint32> SelectedItems() const { return selectedIds(); }
    platform::cl_MSFlexgrid clMsFlexGrid() const;
    QTableView& table() const { return *m_view; }
    CollectorModel& model() const { return *m_model; }
    void setFilter(const CollectorFilter& filter);
    std::function<void()> everybodyListed; ///< showRow() had to leave the filter.

    QAbstractItemView& view() const override;
    qint32 currentId() const override;
    QList<qint32> selectedIds() const override;
    QStringList selectedNames() const override;
    bool showRow(qint32 id) override; ///< Lists everybody where the row is not among those listed.
    void reload() override;

protected:
    void add() override;
    bool confirmDelete(const QList<qint32>& ids) override;
    void deleteRows(const QList<qint32>& ids) override;
    void databaseBack() override;

private:
    void reloadSoon();
    void selectRow(int row);
    void noteCurrent();

    CollectorModel* m_model;
    QTableView* m_view;
    qint32 m_told = 0;
    bool m_reloading = false;
    bool m_stale = false;
};

} // namespace reference
