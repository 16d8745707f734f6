// The modules of a project with their fields as a tree with property columns.
#pragma once

#include <QAbstractItemModel>
#include <QIcon>

namespace app {

class StructureEditing;

/// Modules, and under each a line with the titles of the columns of fields, its fields, and how many they are. What the
/// draft holds is copied by refresh(); what is typed into the tree is told by signals, and comes back with the draft.
class StructureModel : public QAbstractItemModel {
    Q_OBJECT
public:
    enum class Kind { Module, Titles, Field, FieldCount, ModuleCount };
    enum Column { Name, Type, Required, Unique, Mixed, Linked, Description, Element, Example, ColumnCount };
    static constexpr int idRole = Qt::UserRole + 1;   ///< Of a module or field in the draft; 0 for other lines.
    static constexpr int typeRole = Qt::UserRole + 2; ///< Type code of a field.

    StructureModel(const StructureEditing& editing, QObject* parent = nullptr);

    void refresh();
    Kind kind(const QModelIndex& index) const;
    QModelIndex indexOf(int id) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

Q_SIGNALS:
    void nameTyped(int id, const QString& text);
    void descriptionTyped(int id, const QString& text);
    void typeChosen(int field, int type);
    void flagToggled(int field, int flag, bool on);

private:
    struct Line {
        Kind kind = Kind::Module;
        int id = 0;
        int type = 0;
        QStringList texts;
        QList<int> checks; ///< Of the columns Required to Linked: -1 none, 0 or 1.
        QIcon icon;
        bool readOnly = false;
        QString tip;
        std::vector<Line> lines;
    };
    const Line* line(const QModelIndex& index) const;
    Line moduleLine(const struct DraftModule& module) const;
    Line fieldLine(const struct DraftModule& module, const struct DraftField& field) const;
    QVariant text(const Line& line, int column) const;

    const StructureEditing& m_editing;
    std::vector<Line> m_lines;
};

} // namespace app
