// Code points of a text and their case folding, shared by the order and by LIKE: what LIKE holds for
// one character must have one sort key, or a range of keys would miss what a pattern matches.
#pragma once

#include <QChar>
#include <QString>
#include <QStringView>

namespace jet::text {

/// Whether every code unit is below the limit.
inline bool allBelow(QStringView text, char16_t limit)
{
    for (const QChar c : text) {
        if (c.unicode() >= limit)
            return false;
    }
    return true;
}

/// The code point at `at`, which moves behind it. A surrogate without its partner stands for itself.
inline char32_t nextCodePoint(QStringView text, qsizetype& at)
{
    const char16_t unit = text[at++].unicode();
    if (QChar::isHighSurrogate(unit) && at < text.size() && text[at].isLowSurrogate())
        return QChar::surrogateToUcs4(unit, text[at++].unicode());
    return unit;
}

/// Lower case by single characters. The micro sign stays apart from the Greek letter, and a
/// combining mark is never a letter, as in the table of weights.
inline char32_t folded(char32_t c)
{
    if (c < 0x80)
        return c >= U'A' && c <= U'Z' ? c + 32 : c;
    if (c < 0x100)
        return c >= 0xC0 && c <= 0xDE && c != 0xD7 ? c + 32 : c;
    return QChar::combiningClass(c) != 0 ? c : QChar::toCaseFolded(c);
}

} // namespace jet::text
