// Records and pictures on paper.
#pragma once

#include "platform/ui/TablePrinter.h"

#include <QImage>
#include <QPair>

namespace platform {

/// One record: its caption and its fields as they are shown. Fields without a value are left out.
struct PrintRecord {
    QString title;
    QList<QPair<QString, QString>> fields; ///< Caption and text.
};

/// Records below one another (the branch of an individual), each under its caption.
PrintTable recordTable(const QString& title, const QList<PrintRecord>& records);

/// A picture with what explains it.
struct PrintPicture {
    QString title;
    QImage image;
    QStringList legend; ///< Lines below the picture.
};

/// Draws it as large as the page has room for, across where that makes it larger. One page.
void printPicture(QPagedPaintDevice& device, const PrintPicture& picture, const QDateTime& time);

} // namespace platform
