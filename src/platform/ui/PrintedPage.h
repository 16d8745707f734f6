// What every printed page of the program has: a title, the date, its number.
#pragma once

#include <QDateTime>
#include <QPainter>
#include <QPagedPaintDevice>
#include <QString>
#include <functional>

namespace platform {

/// Lengths on a device, and the frame of its pages. Fonts are in points, so that the paper looks the same whatever draws it.
class PrintedPage {
public:
    PrintedPage(QPagedPaintDevice& device, const QString& title, const QDateTime& time);

    double mm(double millimetres) const { return millimetres * m_device.logicalDpiX() / 25.4; }
    /// A font of the page; metrics() measures it on the device.
    static QFont font(double points, bool bold = false);
    QFontMetricsF metrics(const QFont& font) const { return QFontMetricsF(font, const_cast<QPagedPaintDevice*>(&m_device)); }
    QSizeF size() const;  ///< Within the margins.
    QRectF body() const;  ///< Between title and number.
    /// Draws the frame; `pages` 0: the number stands alone. `note` stands beside the number.
    void draw(QPainter& painter, int page, int pages, const QString& note = {}) const;
    QPagedPaintDevice& device() const { return m_device; }

private:
    QPagedPaintDevice& m_device;
    QString m_title;
    QDateTime m_time;
};

/// A4 with margins, upright or across.
void preparePage(QPagedPaintDevice& device, bool landscape);

/// Draws a document with `print` into a PDF file, whole or not at all. Gives an empty text, or why it failed.
[[nodiscard]] QString savePdf(const QString& path, const QString& title, const std::function<void(QPagedPaintDevice&)>& print);

} // namespace platform
