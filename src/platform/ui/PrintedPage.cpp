#include "platform/ui/PrintedPage.h"

#include "platform/ReplaceFile.h"

#include <QBuffer>
#include <QLocale>
#include <QPageLayout>
#include <QPdfWriter>

namespace platform {

using namespace Qt::StringLiterals;

namespace {

constexpr double marginMm = 15;
constexpr double headMm = 10; ///< Title and date, with the line below.
constexpr double footMm = 7;
constexpr double titlePoints = 12;
constexpr double smallPoints = 8;
constexpr int pdfResolution = 300;

} // namespace

PrintedPage::PrintedPage(QPagedPaintDevice& device, const QString& title, const QDateTime& time)
    : m_device(device), m_title(title), m_time(time)
{
}

QFont PrintedPage::font(double points, bool bold)
{
    QFont font(u"DejaVu Sans"_s);
    font.setStyleHint(QFont::SansSerif);
    font.setPointSizeF(points);
    font.setBold(bold);
    font.setLetterSpacing(QFont::AbsoluteSpacing, 0.01); // no ligatures: who searches the file for "fi" shall find it
    return font;
}

QSizeF PrintedPage::size() const
{
    return m_device.pageLayout().paintRectPixels(m_device.logicalDpiX()).size();
}

QRectF PrintedPage::body() const
{
    return {0, mm(headMm), size().width(), size().height() - mm(headMm + footMm)};
}

void PrintedPage::draw(QPainter& painter, int page, int pages, const QString& note) const
{
    const double width = size().width();
    const QString date = QLocale().toString(m_time, u"d MMMM yyyy 'à' HH:mm"_s);
    painter.setPen(Qt::black);
    const QFont small = font(smallPoints), bold = font(titlePoints, true);
    const double dateWidth = metrics(small).horizontalAdvance(date) + mm(4);
    const QRectF head(0, 0, width, mm(headMm - 3));
    painter.setFont(small);
    painter.drawText(head, Qt::AlignRight | Qt::AlignBottom, date);
    painter.setFont(bold);
    painter.drawText(head, Qt::AlignLeft | Qt::AlignBottom, metrics(bold).elidedText(m_title, Qt::ElideRight, width - dateWidth));
    painter.setPen(QPen(Qt::darkGray, mm(0.2)));
    painter.drawLine(QPointF(0, mm(headMm - 2)), QPointF(width, mm(headMm - 2)));
    painter.setPen(Qt::black);
    painter.setFont(small);
    const QRectF foot(0, size().height() - mm(footMm), width, mm(footMm));
    painter.drawText(foot, Qt::AlignHCenter | Qt::AlignBottom,
                     pages > 0 ? u"Page %1 sur %2"_s.arg(QString::number(page), QString::number(pages)) : u"Page %1"_s.arg(page));
    painter.drawText(foot, Qt::AlignRight | Qt::AlignBottom, note);
}

void preparePage(QPagedPaintDevice& device, bool landscape)
{
    device.setPageSize(QPageSize(QPageSize::A4));
    device.setPageOrientation(landscape ? QPageLayout::Landscape : QPageLayout::Portrait);
    device.setPageMargins(QMarginsF(marginMm, marginMm, marginMm, marginMm), QPageLayout::Millimeter);
}

QString savePdf(const QString& path, const QString& title, const std::function<void(QPagedPaintDevice&)>& print)
{
    QBuffer bytes;
    bytes.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&bytes);
        writer.setResolution(pdfResolution);
        writer.setTitle(title);
        writer.setCreator(u"Herbora"_s);
        print(writer);
    }
    return replaceFile(path, bytes.data());
}

} // namespace platform
