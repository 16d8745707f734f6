#include "map/globe/GifFile.h"

#include <gif_lib.h>
#include <memory>

namespace globe {

namespace {

constexpr int colourCount = 256;

int appendTo(GifFileType* gif, const GifByteType* bytes, int length)
{
    static_cast<QByteArray*>(gif->UserData)->append(reinterpret_cast<const char*>(bytes), length);
    return length;
}

struct FreeColours {
    void operator()(ColorMapObject* colours) const { GifFreeMapObject(colours); }
};

bool putPicture(GifFileType* gif, const QImage& picture)
{
    const std::unique_ptr<ColorMapObject, FreeColours> colours(GifMakeMapObject(colourCount, nullptr));
    if (!colours)
        return false;
    const QList<QRgb> table = picture.colorTable();
    for (int i = 0; i < colourCount; ++i) {
        const QRgb colour = table.value(i);
        colours->Colors[i] = {GifByteType(qRed(colour)), GifByteType(qGreen(colour)), GifByteType(qBlue(colour))};
    }
    if (EGifPutScreenDesc(gif, picture.width(), picture.height(), 8, 0, colours.get()) == GIF_ERROR
        || EGifPutImageDesc(gif, 0, 0, picture.width(), picture.height(), false, nullptr) == GIF_ERROR)
        return false;
    for (int y = 0; y < picture.height(); ++y) {
        // The library takes the line as its own to change.
        QByteArray line(reinterpret_cast<const char*>(picture.constScanLine(y)), picture.width());
        if (EGifPutLine(gif, reinterpret_cast<GifPixelType*>(line.data()), int(line.size())) == GIF_ERROR)
            return false;
    }
    return true;
}

} // namespace

QByteArray gifFile(const QImage& picture)
{
    if (picture.format() != QImage::Format_Indexed8 || picture.colorCount() > colourCount)
        return {};
    QByteArray bytes;
    int error = 0;
    GifFileType* gif = EGifOpen(&bytes, appendTo, &error);
    if (!gif)
        return {};
    const bool put = putPicture(gif, picture);
    const bool closed = EGifCloseFile(gif, &error) != GIF_ERROR;
    return put && closed ? bytes : QByteArray();
}

} // namespace globe
