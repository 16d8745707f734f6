#include "images/Pictures.h"

#include <QBuffer>
#include <QImageReader>
#include <QPainter>
#include <cmath>
#include <mutex>

namespace images {

using namespace Qt::StringLiterals;

namespace {

/// Decoding at twice the wanted size leaves the rest to the smooth scaling.
constexpr int oversampling = 2;
constexpr int pictureError = 481;

[[noreturn]] void refuse(const QString& path)
{
    throw jet::Error(pictureError, u"Erreur de chargement de l'image "_s + path, u"GDI+ Module"_s);
}

bool isTooLarge(const QSize& size)
{
    return qint64(size.width()) * size.height() > mostPixels;
}

/// Qt of its own stops at 128 megabytes, less than a picture of 40 megapixels takes; `mostPixels` is our bound.
void allowLargePictures()
{
    static std::once_flag once;
    std::call_once(once, [] { QImageReader::setAllocationLimit(int(mostPixels * 4 >> 20) + 1); });
}

void prepare(QImageReader& reader, const QString& path)
{
    allowLargePictures();
    reader.setAutoTransform(true);
    reader.setDecideFormatFromContent(true);
    if (isTooLarge(reader.size()))
        refuse(path);
}

QSize upright(const QImageReader& reader, const QSize& stored)
{
    return reader.transformation().testFlag(QImageIOHandler::TransformationRotate90) ? stored.transposed() : stored;
}

} // namespace

QSize fittedSize(const QSize& picture, int target)
{
    const double scale = double(std::max(picture.width(), picture.height())) / target;
    return {std::max(1, int(std::lround(picture.width() / scale))), std::max(1, int(std::lround(picture.height() / scale)))};
}

QImage loadPicture(const QString& path, int target, bool square, const QColor& background)
{
    QImageReader reader(path);
    prepare(reader, path);
    const QSize stored = reader.size();
    if (stored.isValid() && std::max(stored.width(), stored.height()) > target * oversampling)
        reader.setScaledSize(fittedSize(stored, target * oversampling));
    const QImage loaded = target > 0 ? reader.read() : QImage();
    if (loaded.isNull())
        refuse(path);
    const QSize drawn = fittedSize(loaded.size(), target);
    QImage result(square ? QSize(target, target) : drawn, QImage::Format_RGB32);
    result.fill(background);
    QPainter painter(&result);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QPoint at(int(std::lround((result.width() - drawn.width()) / 2.0)), int(std::lround((result.height() - drawn.height()) / 2.0)));
    painter.drawImage(at, loaded.scaled(drawn, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    return result;
}

ViewedPicture viewPicture(const QString& path, int longest)
{
    QImageReader reader(path);
    prepare(reader, path);
    const QSize stored = reader.size();
    if (longest > 0 && stored.isValid() && std::max(stored.width(), stored.height()) > longest)
        reader.setScaledSize(fittedSize(stored, longest));
    ViewedPicture viewed;
    viewed.image = reader.read();
    if (viewed.image.isNull())
        refuse(path);
    viewed.size = stored.isValid() ? upright(reader, stored) : viewed.image.size();
    return viewed;
}

QImage decodedWhole(const QByteArray& bytes)
{
    allowLargePictures();
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    return isTooLarge(reader.size()) ? QImage() : reader.read();
}

} // namespace images
