#include "Operation.h"

#include <QCryptographicHash>
#include <QFile>
#include <QSaveFile>
#include <QTextStream>

namespace faults {

using namespace Qt::StringLiterals;

namespace {

const QString textFile = u"texte.txt"_s;

QByteArray oldText()
{
    return QByteArray(20'000, 'a');
}
QByteArray newText()
{
    return QByteArray(30'000, 'b');
}

bool say(const QString& message)
{
    QTextStream(stderr) << message << Qt::endl;
    return false;
}

void writeOldText(const QString& folder)
{
    QFile file(folder + u'/' + textFile);
    if (file.open(QIODevice::WriteOnly)) {
        file.write(oldText());
    }
}

QString bytesOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return u"absent"_s;
    }
    return QString::fromLatin1(
        QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256).toHex());
}

QString textState(const QString& folder)
{
    return bytesOf(folder + u'/' + textFile);
}

/// The folder keeps what an accident left: nothing cleans up text files.
void noNextStart(const QString&) {}

bool replaceInPlace(const QString& folder)
{
    QFile file(folder + u'/' + textFile);
    if (!file.open(QIODevice::WriteOnly)) {
        return say(file.errorString());
    }
    return file.write(newText()) == newText().size() || say(file.errorString());
}

/// Tries the trial itself: a wrong way of replacing a file.
Operation naiveReplacement()
{
    return {u"naif"_s, writeOldText, replaceInPlace, noNextStart, textState, {textFile}, {}, true};
}

} // namespace

const std::vector<Operation>& operations()
{
    static const std::vector<Operation> table{
        naiveReplacement(),
    };
    return table;
}

} // namespace faults
