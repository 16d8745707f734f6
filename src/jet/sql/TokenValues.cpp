#include "jet/sql/Lexer.h"

#include <cmath>

namespace jet::sql {

namespace {

bool isDecimalDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

// "FFFF" is -1 and "1FFFF" is 131071: up to four digits stand for a 16-bit
// number, up to eight for a 32-bit one.
QVariant hexNumber(QStringView digits)
{
    bool read = false;
    const qulonglong value = digits.toULongLong(&read, 16);
    if (!read || value > 0xFFFFFFFFu)
        return {};
    return value <= 0xFFFFu ? QVariant(int(qint16(value))) : QVariant(int(qint32(value)));
}

// Reads the parts of a date constant one after the other.
class DateReader {
public:
    explicit DateReader(QStringView text) : m_text(text) {}

    std::optional<QDateTime> read();

private:
    void skipBlanks()
    {
        while (!m_text.isEmpty() && m_text.front().isSpace())
            m_text = m_text.sliced(1);
    }
    bool accept(QChar mark)
    {
        if (m_text.isEmpty() || m_text.front() != mark)
            return false;
        m_text = m_text.sliced(1);
        return true;
    }
    int number(qsizetype& digits);
    bool readDate();
    bool readTime();
    bool readHalfOfDay(int& hour);

    QStringView m_text;
    QDate m_date{1899, 12, 30};
    QTime m_time{0, 0};
};

int DateReader::number(qsizetype& digits)
{
    digits = 0;
    while (digits < m_text.size() && isDecimalDigit(m_text[digits]))
        ++digits;
    const int value = digits > 0 && digits <= 4 ? m_text.first(digits).toInt() : -1;
    m_text = m_text.sliced(digits);
    return value;
}

bool DateReader::readDate()
{
    qsizetype width = 0;
    const int first = number(width);
    const bool iso = width == 4;
    const QChar mark = m_text.isEmpty() ? QChar() : m_text.front();
    if (mark != u'/' && mark != u'-')
        return false;
    accept(mark);
    const int second = number(width);
    if (!accept(mark))
        return false;
    int third = number(width);
    if (first < 0 || second < 0 || third < 0)
        return false;
    if (!iso && width <= 2)
        third += third < 30 ? 2000 : 1900;
    m_date = iso ? QDate(first, second, third) : QDate(third, first, second);
    return m_date.isValid() && m_date.year() >= 100;
}

bool DateReader::readHalfOfDay(int& hour)
{
    const bool morning = m_text.startsWith(u"am", Qt::CaseInsensitive);
    if (!morning && !m_text.startsWith(u"pm", Qt::CaseInsensitive))
        return true;
    m_text = m_text.sliced(2);
    if (hour < 1 || hour > 12)
        return false;
    hour = hour % 12 + (morning ? 0 : 12);
    return true;
}

bool DateReader::readTime()
{
    qsizetype width = 0;
    int hour = number(width);
    if (!accept(u':'))
        return false;
    const int minute = number(width);
    const int second = accept(u':') ? number(width) : 0;
    skipBlanks();
    if (!readHalfOfDay(hour))
        return false;
    m_time = QTime(hour, minute, second);
    return m_time.isValid();
}

std::optional<QDateTime> DateReader::read()
{
    skipBlanks();
    qsizetype width = 0;
    while (width < m_text.size() && isDecimalDigit(m_text[width]))
        ++width;
    const bool timeOnly = width < m_text.size() && m_text[width] == u':';
    if (!timeOnly && !readDate())
        return std::nullopt;
    if (!accept(u'T'))
        skipBlanks();
    if (!m_text.isEmpty() && !readTime())
        return std::nullopt;
    skipBlanks();
    if (!m_text.isEmpty())
        return std::nullopt;
    return QDateTime(m_date, m_time);
}

} // namespace

QString nameOf(QStringView token)
{
    if (token.startsWith(u'['))
        return token.sliced(1, token.size() - 2).toString();
    if (token.endsWith(u'$') || token.endsWith(u'@'))
        return token.chopped(1).toString();
    return token.toString();
}

QString textOf(QStringView token)
{
    const QChar quote = token.front();
    const QStringView inner = token.sliced(1, token.size() - 2);
    QString result;
    result.reserve(inner.size());
    for (qsizetype i = 0; i < inner.size(); ++i) {
        result += inner[i];
        if (inner[i] == quote)
            ++i;
    }
    return result;
}

QVariant numberOf(QStringView token)
{
    if (token.startsWith(u'&'))
        return hexNumber(token.sliced(2));
    bool whole = false;
    const int small = token.toInt(&whole);
    if (whole)
        return small;
    bool read = false;
    const double value = token.toDouble(&read);
    return read && std::isfinite(value) ? QVariant(value) : QVariant();
}

std::optional<QDateTime> dateOf(QStringView token)
{
    return DateReader(token.sliced(1, token.size() - 2)).read();
}

} // namespace jet::sql
