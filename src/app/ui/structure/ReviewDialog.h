// What saving the structure does to the records, shown before it is done.
#pragma once

#ifndef Q_MOC_RUN // which reads plain letters only
#include "app/structure/StructureReview.h"
#endif

#include <QDialog>
#include <QPushButton>
#include <QTreeWidget>

namespace app {

/// Accepted: the user wants it saved. Where a record breaks a rule, it can only be closed.
class ReviewDialog : public QDialog {
    Q_OBJECT
public:
    ReviewDialog(const StructureReview& review, const QString& title, const QString& copy, QWidget* parent = nullptr);

Q_SIGNALS:
    void recordsWanted(const QString& title, const QString& module, const QList<qint32>& ids);

private:
    void fill();
    void showRecords();
    void updateButtons();

    StructureReview m_review;
    QTreeWidget* m_list;
    QPushButton* m_show;
};

} // namespace app
