// Small pictures in rows and columns.
#pragma once

#include "images/PictureRows.h"

#include <QAbstractScrollArea>
#include <QCache>
#include <QPixmap>
#include <QSet>
#include <QTimer>

namespace images {

class ThumbnailLoader;

/// One page of a source. Only what is in sight is asked for and kept, so that a page may be as long as one likes.
///
/// Keys: arrows, Home, End, Page Up and Page Down move (with Shift they extend the selection, with Ctrl they leave it),
/// Space selects, Ctrl+Space adds or takes away, Return opens. A click selects, with Shift up to it, with Ctrl it
/// adds or takes away.
class ThumbnailGrid : public QAbstractScrollArea {
    Q_OBJECT
public:
    explicit ThumbnailGrid(QWidget* parent = nullptr);
    ~ThumbnailGrid() override;

    void setLoader(std::shared_ptr<ThumbnailLoader> loader);
    /// Shows `count` pictures from `first` on. Selection and thumbnails stay; what is in sight is looked at anew.
    void show(std::shared_ptr<const ThumbnailSource> source, qsizetype first, qsizetype count);
    const ThumbnailSource* source() const { return m_source.get(); }
    qsizetype firstShown() const { return m_first; }
    qsizetype shownCount() const { return m_count; }
    void forget(); ///< Thumbnails and failures.

    // --- Look --------------------------------------------------------------------------------
    int columns() const; ///< As they are shown.
    /// 0: as many as fit.
    void setColumns(int columns);
    int fixedColumns() const { return m_fixedColumns; }
    /// Rows in sight at once; 0: cells are as high as their picture wants.
    void setRows(int rows);
    int fixedRows() const { return m_fixedRows; }
    int side() const { return m_side; }
    void setSide(int pixels); ///< Of the square in which a picture is fitted, where no columns are fixed.
    bool showsNames() const { return m_names; }
    void setNamesShown(bool shown);
    bool showsIds() const { return m_ids; }
    void setIdsShown(bool shown);
    void setBackground(const QColor& color); ///< Invalid: that of the palette.
    QColor background() const { return m_background; }

    // --- Selection ---------------------------------------------------------------------------
    const QSet<qint32>& selection() const { return m_selected; }
    /// Says nothing back.
    void setSelection(const QSet<qint32>& ids);
    /// Positions in the source; -1 for none.
    qsizetype current() const { return m_current; }
    qsizetype anchor() const { return m_anchor; }
    void setCurrent(qsizetype position); ///< Moves it into sight where it is on the page.
    qsizetype positionAt(QPoint at) const;
    QRect cell(qsizetype position) const; ///< In the viewport.
    bool isReady(qsizetype position) const;
    QString failureOf(qsizetype position) const;
    /// The positions in sight.
    std::pair<qsizetype, qsizetype> inSight() const;

    QSize sizeHint() const override { return {640, 480}; }

Q_SIGNALS:
    void selectionChanged(); ///< By the user.
    void currentChanged();
    void activated(qint32 id);
    void failed(const QString& why);
    void pageWanted(int by); ///< A key led beyond the page.

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void changeEvent(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    QSize cellSize() const;
    int captionLines() const { return int(m_names) + int(m_ids); }
    void layOut();
    void askSoon() { m_asking.start(); }
    void ask();
    void take(const QString& name, const QImage& thumbnail);
    void takeFailure(const QString& name, const QString& why);
    void updateName(const QString& name);
    void drawCell(QPainter& painter, qsizetype position, const QRect& cell);
    void drawPicture(QPainter& painter, const QString& name, const QRect& box);
    void drawCaptions(QPainter& painter, qsizetype position, const QRect& box, bool selected);
    bool step(int key, qsizetype& to) const;
    void moveTo(qsizetype position, Qt::KeyboardModifiers keys);
    void selectTo(qsizetype position, bool keep);
    void toggle(qsizetype position);
    QString tip(qsizetype position) const;

    std::shared_ptr<ThumbnailLoader> m_loader;
    std::shared_ptr<const ThumbnailSource> m_source;
    qsizetype m_first = 0;
    qsizetype m_count = 0;
    int m_fixedColumns = 0;
    int m_fixedRows = 0;
    int m_side;
    bool m_names = true;
    bool m_ids = false;
    QColor m_background;

    QCache<QString, QPixmap> m_thumbnails; ///< Costs are kilobytes.
    QHash<QString, QString> m_failures;
    QSet<QString> m_fresh; ///< Came since the page was shown.
    QTimer m_asking;       ///< One question for all that a stroke of the wheel brings into sight.

    QSet<qint32> m_selected;
    qsizetype m_current = -1;
    qsizetype m_anchor = -1;
};

} // namespace images
