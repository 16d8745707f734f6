// New values in many records of a module: the window.
#pragma once

#include "platform/ui/TaskRunner.h"
#include "query/ui/CbModule.h"
#include "query/ui/ReplaceModel.h"

#ifndef Q_MOC_RUN // which reads plain letters only
#include "query/Query.h"
#endif

#include <QDialog>
#include <QDialogButtonBox>
#include <QRadioButton>
#include <QTableView>
#include <QTableWidget>
#include <QTimer>

namespace query {

/// What the window needs of the world around it.
struct ReplaceSurroundings {
    QueryWorld world;
    QList<data::ModuleRecord> modules;
    editing::EditingContext context;
    platform::TaskRunner& runner;
    FieldTreeModel::Icons icons = {};
};

/// The window `Form4`. The records are those given when it opens, whatever is selected later. Before anything is
/// changed it shows what the first records would become and how many there are; only what was counted can be changed.
class ReplaceDialog : public QDialog {
    Q_OBJECT
public:
    /// `records` are those selected; none leaves the whole module.
    ReplaceDialog(const ReplaceSurroundings& surroundings, const data::ModuleRecord& module,
                  const QList<qint32>& records, QWidget* parent = nullptr);
    ~ReplaceDialog() override;

    ReplaceModel& model() { return *m_model; }
    QTableWidget& preview() { return *m_preview; }
    /// The counts are those of what is typed.
    bool isReady() const { return m_ready; }
    void replace();

Q_SIGNALS:
    void replaced(int records);
    void counted(); ///< The preview shows what is typed.

private:
    QWidget* makeTop();
    QWidget* makeGrid();
    void connectParts();
    BatchReplace batch() const;
    void editExpression();
    void changed();
    void count();
    void showCounts(const ReplaceCounts& counts, const QList<ReplacePreview>& records);
    void showNothing(const QString& text);
    QString shown(const Node* field, const QString& value) const;
    void run(const ReplacePlan& plan);
    void fail(std::exception_ptr failure);

    ReplaceSurroundings m_around;
    data::ModuleRecord m_module;
    QList<qint32> m_records;
    std::unique_ptr<Structure> m_structure;
    ReplaceModel* m_model;
    CbModule* m_fields;
    QRadioButton* m_selection;
    QRadioButton* m_whole;
    QTableView* m_grid;
    QTableWidget* m_preview;
    QLabel* m_counts;
    QPushButton* m_replace;
    QTimer m_pause; ///< Between the last key and the counting.
    qint64 m_announced = 0;
    int m_generation = 0;
    bool m_ready = false;
    bool m_running = false;
};

} // namespace query
