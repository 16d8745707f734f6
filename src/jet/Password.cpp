#include "jet/Password.h"

#include "jet/Error.h"

#include <QCryptographicHash>
#include <QRandomGenerator>
#include <QStringList>

namespace jet {

using namespace Qt::StringLiterals;

namespace {

// Some ten milliseconds: nothing at an opening, much for who tries a word list.
constexpr int rounds = 20'000;
constexpr int saltWords = 4;

QByteArray stretched(const QString& password, const QByteArray& salt, int times)
{
    const QByteArray secret = password.toUtf8();
    QByteArray hash = QCryptographicHash::hash(salt + secret, QCryptographicHash::Sha256);
    for (int round = 1; round < times; ++round)
        hash = QCryptographicHash::hash(hash + secret, QCryptographicHash::Sha256);
    return hash;
}

QString hex(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.toHex());
}

bool isNumber(const QString& text)
{
    bool ok = false;
    text.toUInt(&ok, 0); // decimal, or hexadecimal behind 0x
    return ok;
}

} // namespace

QString hashedPassword(const QString& password)
{
    quint32 words[saltWords];
    QRandomGenerator::system()->fillRange(words);
    const QByteArray salt(reinterpret_cast<const char*>(words), sizeof words);
    return QString::number(rounds) + u'$' + hex(salt) + u'$' + hex(stretched(password, salt, rounds));
}

bool passwordMatches(const QString& password, const QString& hashed)
{
    const QStringList parts = hashed.split(u'$');
    if (parts.size() != 3)
        return false;
    const QByteArray salt = QByteArray::fromHex(parts[1].toLatin1());
    return hex(stretched(password, salt, parts[0].toInt())) == parts[2];
}

LocaleString parseLocale(const QString& text, const QString& path)
{
    const QString passwordWord = u";pwd="_s;
    LocaleString parsed{text, {}};
    const qsizetype at = text.indexOf(passwordWord, 0, Qt::CaseInsensitive);
    if (at >= 0) {
        parsed.locale = text.left(at);
        parsed.password = text.sliced(at + passwordWord.size());
    }
    QStringList known{u"LANGID"_s, u"CP"_s, u"COUNTRY"_s};
    const QStringList parts = parsed.locale.split(u';');
    bool good = parts.first().isEmpty();
    for (const QString& part : parts.sliced(1))
        good = good && known.removeOne(part.section(u'=', 0, 0).toUpper()) && isNumber(part.section(u'=', 1));
    if (!good || !known.isEmpty())
        fail(3424, path, parsed.locale);
    return parsed;
}

} // namespace jet
