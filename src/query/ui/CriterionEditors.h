// Editors for the cells of criteria.
#pragma once

#ifndef Q_MOC_RUN // which reads plain letters only
#include "editing/ReferenceSearch.h"
#include "query/Structure.h"
#endif

#include <QCompleter>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QStandardItemModel>
#include <QStyledItemDelegate>
#include <functional>

namespace query {

struct Node;

/// Rows of a reference list by what is typed; empty while the project is another thread's.
using NameSearch = std::function<QList<editing::ReferenceMatch>(int type, const QString& typed)>;

/// A person, a place or a taxon by its name; several of them are divided by ";". What is chosen reads "3 - Quercus
/// ilex": the number counts, the name is for the reader.
class NameEdit : public QLineEdit {
    Q_OBJECT
public:
    NameEdit(int type, NameSearch search, QWidget* parent = nullptr);
    QString value() const; ///< One a line.
    void setValue(const QString& value);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void showMatches();
    void choose(const QModelIndex& index);

    int m_type;
    NameSearch m_search;
    QCompleter* m_completer;
    QStandardItemModel* m_matches;
};

/// A value of one or several lines. Return ends the typing, Shift+Return begins a line; it grows with its lines.
class ValueEdit : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit ValueEdit(QWidget* parent = nullptr);

Q_SIGNALS:
    void finished();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void fit();
};

/// "ET" or "OU"; the operators of the field's type; a value as its type wants it.
class CriterionDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    explicit CriterionDelegate(QObject* parent = nullptr) : QStyledItemDelegate(parent) {}
    void setSearch(NameSearch search) { m_search = std::move(search); }

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    /// An editor for a value of that field.
    QWidget* valueEditor(QWidget* parent, const Node* field) const;

private:
    QWidget* operatorEditor(QWidget* parent, const Node* field) const;
    QWidget* choiceEditor(QWidget* parent, const QStringList& items) const;
    void finish(QWidget* editor) const;

    NameSearch m_search;
};

} // namespace query
