// The steps of the assistant that imports tables.
#pragma once

#ifndef Q_MOC_RUN // which reads plain letters only
#include "app/import/CsvImport.h"
#endif
#include "platform/Dialogues.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableWidget>

namespace app {

/// The file, where it goes, how it is written; its first rows.
class ImportFilePage : public QWidget {
    Q_OBJECT
public:
    ImportFilePage(QList<ImportTarget> targets, platform::Dialogues& dialogues, QWidget* parent = nullptr);

    void setFile(const QString& path); ///< Detects how it is written.
    void setTarget(const QString& name);
    QString file() const { return m_path->text(); }
    ImportTarget target() const;
    CsvFormat format() const;
    bool update() const { return m_update->isChecked(); }
    bool emptyErases() const { return m_update->isChecked() && m_erases->isChecked(); }
    /// Header and first rows; empty when the file cannot be read.
    const QList<QStringList>& rows() const { return m_rows; }

Q_SIGNALS:
    void changed();

private:
    void choose();
    void showRows();
    QComboBox* addChoice(const QString& name, const QString& label, class QGridLayout& grid, int column);

    QList<ImportTarget> m_targets;
    platform::Dialogues& m_dialogues;
    QLineEdit* m_path;
    QComboBox* m_target;
    QComboBox* m_separator;
    QComboBox* m_encoding;
    QComboBox* m_decimal;
    QCheckBox* m_update;
    QCheckBox* m_erases;
    QTableWidget* m_preview;
    QLabel* m_note;
    QList<QStringList> m_rows;
};

/// Which column fills which field.
class ImportColumnsPage : public QWidget {
    Q_OBJECT
public:
    explicit ImportColumnsPage(QWidget* parent = nullptr);

    void present(const QList<QStringList>& rows, const ImportTarget& target, const ColumnMapping& mapping);
    ColumnMapping mapping() const;
    void setProblem(const QString& text) { m_problem->setText(text); }

Q_SIGNALS:
    void changed();

private:
    void keepOnce(QComboBox* chosen);

    QTableWidget* m_table;
    QLabel* m_problem;
    QList<QComboBox*> m_fields;
};

/// What becomes of the names that the project does not know.
class ImportNamesPage : public QWidget {
    Q_OBJECT
public:
    explicit ImportNamesPage(QWidget* parent = nullptr);

    void present(const QList<UnknownName>& names);
    NameDecisions decisions() const;

private:
    void decideAll(int kind);

    QTableWidget* m_table;
    QLabel* m_note;
    QList<UnknownName> m_names;
    QList<QComboBox*> m_decisions;
    QList<QPushButton*> m_all; ///< One decision for every name.
};

} // namespace app
