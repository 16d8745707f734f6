// The pictures of a result, row by row.
#pragma once

#include "jet/Database.h"
#include "platform/Progression.h"

#include <QList>
#include <QStringList>
#include <memory>

namespace images {

/// What a grid of thumbnails shows. It is asked for what is in sight alone.
class ThumbnailSource {
public:
    virtual ~ThumbnailSource() = default;
    virtual qsizetype count() const = 0;
    virtual qint32 id(qsizetype position) const = 0;    ///< Of the record.
    virtual QString name(qsizetype position) const = 0; ///< The picture file as the record has it.
};

/// Rows that were read whole.
class PictureRows : public ThumbnailSource {
public:
    struct Row {
        qint32 id;
        QString name;
    };
    PictureRows() = default;
    explicit PictureRows(QList<Row> rows) : m_rows(std::move(rows)) {}
    qsizetype count() const override { return m_rows.size(); }
    qint32 id(qsizetype position) const override { return m_rows.at(position).id; }
    QString name(qsizetype position) const override { return m_rows.at(position).name; }

private:
    QList<Row> m_rows;
};

/// Runs a statement whose columns are `ChpID` (identifier of the record) and `Chp1` (picture file). Rows without a
/// file are left out. Throws jet::Error, 3059 when the user stopped it.
std::unique_ptr<PictureRows> readPictures(jet::Database& database, const QString& statement,
                                          platform::Progression& progression);

} // namespace images
