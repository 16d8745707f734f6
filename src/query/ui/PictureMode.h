// A result as thumbnails.
#pragma once

#include "images/ui/Thumbnails.h"
#include "platform/ui/TaskRunner.h"
#include "query/ui/ResultMode.h"

namespace query {

/// What pictures of a project are shown with.
struct PictureWorld {
    std::shared_ptr<images::ThumbnailLoader> loader;
    std::function<QStringList()> folders;
};

/// The mode "picture". Rows are read beside the windows when the mode comes up; a cell is a picture record, which belongs
/// to an individual.
class PictureMode : public ResultMode {
    Q_OBJECT
public:
    PictureMode(ResultSource& source, PictureWorld world, platform::TaskRunner& runner, QWidget* parent = nullptr);
    ~PictureMode() override;

    QString key() const override;
    void rowsReplaced() override;
    void valuesChanged(const QStringList& modules) override;
    void setSelection(const ResultSelection& selection) override;
    /// The individuals of the pictures selected, and the pictures where they are the records of the query.
    ResultSelection selection() const override;
    QString statusText() const override { return m_thumbnails->countText(); }
    bool can(platform::TabCommand command) const override;
    void run(platform::TabCommand command) override;

    images::Thumbnails& thumbnails() { return *m_thumbnails; }
    bool isLoading() const { return m_thumbnails->isReading(); }

private:
    struct Loaded;
    void load();
    void read(const QString& statement, const images::Thumbnails::Done& done);
    void select(const ResultSelection& selection);
    void activate(qint32 id);
    ResultSelection recordsOf(const QList<qint32>& pictures) const;

    platform::TaskRunner& m_runner;
    PictureWorld m_world;
    images::Thumbnails* m_thumbnails;
    std::shared_ptr<Loaded> m_loaded; ///< Null before anything was read.
    ResultSelection m_wanted;         ///< To be selected as soon as the pictures are there.
};

} // namespace query
