// The control "Thumbnails": pictures of a statement, page by page.
#pragma once

#include "images/ui/ThumbnailGrid.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QToolButton>
#include <functional>

class QHBoxLayout;

namespace images {

/// The grid with its panels ("nbthumb", "temps", "nbsel", "msg") and its pages ("first", "prev", "next", "last").
///
/// It knows no database: `read` runs the statement wherever that is possible, and calls back on this thread.
class Thumbnails : public QWidget {
    Q_OBJECT
public:
    using Done = std::function<void(std::shared_ptr<const ThumbnailSource> pictures, const QString& failure)>;
    using Reader = std::function<void(const QString& statement, const Done& done)>;

    explicit Thumbnails(QWidget* parent = nullptr);

    void setReader(Reader read) { m_read = std::move(read); }
    void setLoader(std::shared_ptr<ThumbnailLoader> loader);
    ThumbnailGrid& grid() { return *m_grid; }
    const ThumbnailGrid& grid() const { return *m_grid; }

    /// A statement with the columns `Chp1` (picture file) and `ChpID` (identifier); shown by Refresh.
    QString SQL() const { return m_sql; }
    void setSQL(const QString& statement) { m_sql = statement; }
    void Refresh();
    bool isReading() const { return m_reading > 0; }
    /// Pictures from elsewhere.
    void setPictures(std::shared_ptr<const ThumbnailSource> pictures);
    void Clear();
    QString NomModule() const { return m_module; } ///< Of the records that `ChpID` identifies.
    void setNomModule(const QString& module) { m_module = module; }

    // --- Pages -------------------------------------------------------------------------------
    qsizetype NbImages() const { return m_perPage; } ///< On a page.
    void setNbImages(qsizetype count);
    qsizetype page() const { return m_page; }
    qsizetype pageCount() const;
    void goTo(const QString& key); ///< "first", "prev", "next", "last"
    void showPage(qsizetype page);

    // --- Look --------------------------------------------------------------------------------
    int Colonnes() const { return m_grid->columns(); }
    void setColonnes(int columns) { m_grid->setColumns(columns); } ///< 0: as many as fit.
    int Lignes() const { return m_grid->fixedRows(); }
    void setLignes(int rows) { m_grid->setRows(rows); } ///< In sight at once; 0: as many as fit.
    QColor BackGroundColor() const { return m_grid->background(); }
    void setBackGroundColor(const QColor& color) { m_grid->setBackground(color); }
    bool ShowIDPicture() const { return m_grid->showsIds(); }
    void setShowIDPicture(bool shown) { m_ids->setChecked(shown); }
    bool ShowNamePicture() const { return m_grid->showsNames(); }
    void setShowNamePicture(bool shown) { m_names->setChecked(shown); }
    QString TimeText() const { return m_time->text(); }
    void setTimeText(const QString& text) { m_time->setText(text); }
    QString message() const { return m_message->text(); } ///< "msg"
    void setMessage(const QString& text);
    QString countText() const { return m_count->text(); } ///< "nbthumb"

    // --- Selection ---------------------------------------------------------------------------
    QString SelectedItems() const;       ///< Identifiers in their order, joined by ",".
    QList<qint32> selectedIds() const;
    QStringList SelectedlsFiles() const; ///< Picture files of the same.
    QString SelectedFile() const;        ///< Of the current picture.
    /// Marks the records and shows the first of them. Says nothing back.
    void RefreshSelectedItems(const QList<qint32>& ids);
    void SelectAll();
    void SelPicture(qint32 id) { RefreshSelectedItems({id}); }
    // Of the current picture and of the other end of the selection; -1 for none.
    int Row() const { return rowOf(m_grid->current()); }
    int col() const { return columnOf(m_grid->current()); }
    int RowSel() const { return rowOf(m_grid->anchor()); }
    int ColSel() const { return columnOf(m_grid->anchor()); }

Q_SIGNALS:
    void selectionChanged(); ///< By the user.
    void activated(qint32 id);
    void shown();   ///< A Refresh ended.
    void failed(const QString& description);

private:
    void makePanels(QHBoxLayout& layout);
    QToolButton* toggle(const QString& name, const QString& text, const QString& tip, void (ThumbnailGrid::*set)(bool));
    QLabel* panel(const QString& name, QHBoxLayout& layout, int stretch = 0);
    void showPanels();
    void adopt(std::shared_ptr<const ThumbnailSource> pictures);
    template <typename Use> void eachSelected(Use use) const;
    int rowOf(qsizetype position) const;
    int columnOf(qsizetype position) const;

    ThumbnailGrid* m_grid;
    Reader m_read;
    std::shared_ptr<const ThumbnailSource> m_pictures;
    QString m_sql;
    QString m_module;
    qsizetype m_perPage;
    qsizetype m_page = 0;
    int m_generation = 0; ///< Rows of an earlier Refresh are dropped.
    int m_reading = 0;
    QElapsedTimer m_clock;

    QHash<QString, QToolButton*> m_pageButtons;
    QLabel* m_pageNumber = nullptr;
    QToolButton* m_names = nullptr;
    QToolButton* m_ids = nullptr;
    QLabel* m_message = nullptr;
    QLabel* m_selected = nullptr;
    QLabel* m_count = nullptr;
    QLabel* m_time = nullptr;
};

} // namespace images
