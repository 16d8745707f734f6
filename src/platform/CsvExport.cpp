#include "platform/CsvExport.h"

#include "platform/ReplaceFile.h"

namespace platform {

using namespace Qt::StringLiterals;

namespace {

const QString lineEnd = u"\r\n"_s;
constexpr qsizetype pieceSize = 1 << 18; ///< Bytes written at once.

QString writeRows(FileReplacement& out, const QStringList& header, const NextRow& next, bool mark)
{
    QByteArray piece;
    if (mark)
        piece = "\xEF\xBB\xBF";
    QStringList cells = header;
    do {
        const QString line = csvLine(cells);
        if (!line.isEmpty())
            piece += (line + lineEnd).toUtf8();
        if (piece.size() >= pieceSize) {
            if (const QString error = out.write(piece); !error.isEmpty())
                return error;
            piece.clear();
        }
        cells.clear();
    } while (next(cells));
    return out.write(piece);
}

} // namespace

QString csvLine(const QStringList& cells)
{
    QString line;
    for (const QString& cell : cells)
        line += u'"' + cell + u"\";"_s;
    line.chop(1);
    return line;
}

QString csvText(const QList<QStringList>& rows)
{
    QString text;
    for (const QStringList& cells : rows)
        text += csvLine(cells) + lineEnd;
    return text;
}

bool exportCsv(Dialogues& dialogues, QString file, const QStringList& header, const NextRow& next, bool mark)
{
    const QString title = u"Exportation CSV"_s;
    if (file.isEmpty())
        file = dialogues.saveFile(title, u"Texte CSV (point-virgule, *.csv)|*.csv"_s);
    if (file.isEmpty())
        return false;
    removeUnfinished(file); // of an export that never came to its end
    FileReplacement out(file);
    QString error = out.open();
    if (error.isEmpty())
        error = writeRows(out, header, next, mark);
    if (error.isEmpty())
        error = out.commit();
    if (error.isEmpty())
        return true;
    dialogues.tell(u"Impossible d'accéder au fichier. Vérifiez qu'il est bien présent et qu'il n'est ouvert par aucune "
                   "autre applications :\r"_s
                       + error,
                   title, BoxIcon::Stop);
    return false;
}

} // namespace platform
