#include "platform/ui/RecordPrinter.h"

namespace platform {

using namespace Qt::StringLiterals;

namespace {

constexpr double legendPoints = 9;
constexpr double gapMm = 3;

} // namespace

PrintTable recordTable(const QString& title, const QList<PrintRecord>& records)
{
    QList<PrintRow> lines;
    for (const PrintRecord& record : records) {
        lines.append({{record.title}, true});
        for (const auto& [caption, text] : record.fields) {
            if (!text.trimmed().isEmpty())
                lines.append({{caption, text}, false});
        }
    }
    return {title, {{u"Champ"_s}, {u"Valeur"_s}}, [lines](qint64 first, int count) { return lines.mid(first, count); }};
}

void printPicture(QPagedPaintDevice& device, const PrintPicture& picture, const QDateTime& time)
{
    preparePage(device, picture.image.width() > picture.image.height());
    const PrintedPage page(device, picture.title, time);
    QPainter painter(&device);
    page.draw(painter, 1, 1);
    QRectF room = page.body();
    const QString legend = picture.legend.join(u'\n');
    painter.setFont(PrintedPage::font(legendPoints));
    if (!legend.isEmpty()) {
        const QRectF text = page.metrics(painter.font()).boundingRect(room, Qt::TextWordWrap, legend);
        const double height = qMin(text.height(), room.height() / 3);
        painter.drawText(QRectF(room.left(), room.bottom() - height, room.width(), height), Qt::TextWordWrap, legend);
        room.setBottom(room.bottom() - height - page.mm(gapMm));
    }
    if (picture.image.isNull())
        return;
    const QSizeF size = QSizeF(picture.image.size()).scaled(room.size(), Qt::KeepAspectRatio);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QRectF(room.left() + (room.width() - size.width()) / 2, room.top(), size.width(), size.height()), picture.image);
}

} // namespace platform
