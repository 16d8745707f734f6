// Draws "Globe.gif": herbora-globe OUTLINES FILE
#include "map/globe/GifFile.h"
#include "map/globe/Globe.h"
#include "platform/ReplaceFile.h"

#include <QTextStream>

namespace {

int fail(const QString& text)
{
    QTextStream(stderr) << text << '\n';
    return 1;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
        return fail(QStringLiteral("Usage : herbora-globe CONTOURS FICHIER"));
    const QString source = QString::fromLocal8Bit(argv[1]);
    const QList<globe::Land> lands = globe::readOutlines(source);
    if (lands.isEmpty())
        return fail(QStringLiteral("Contours illisibles : ") + source);
    const QByteArray bytes = globe::gifFile(globe::reduced(globe::drawGlobe(lands)));
    if (bytes.isEmpty())
        return fail(QStringLiteral("Le GIF n'a pas pu être composé."));
    const QString error = platform::replaceFile(QString::fromLocal8Bit(argv[2]), bytes);
    return error.isEmpty() ? 0 : fail(error);
}
