#include "jet/text/TextOrder.h"

#include "jet/text/Fold.h"
#include "jet/text/OrderTable.h"

#include <QVarLengthArray>

namespace jet::text {

namespace {

// Layout of a key: primary weights, 01, accents, and where there are ignorable characters 01 01 01 and
// an entry for each. No weight is below 02, so that 01 ends a level before anything that goes on.
constexpr char levelEnd = 1;
constexpr uchar noAccent = 2;
constexpr uchar furtherAccent = 0xFF;  // A second mark on one letter: FF and its weight.
constexpr uchar wideAccent = 0xFE;     // A mark outside the block of Latin marks: FE and three bytes.
constexpr uchar ignorableEntry = 0x06; // Position, 06, code.
constexpr uchar strayMarkEntry = 0x07; // A mark that has no letter before it: position, 07, weight.
constexpr uchar aboveAll = 0xFF;       // Greater than any byte that a primary weight begins with.

struct Mark {
    char16_t character;
    uchar weight;
};

// The marks of Latin letters; those of Latin-1 have the weights of its table.
constexpr Mark latinMarks[] = {
    {0x0300, 0x0F}, {0x0301, 0x0E}, {0x0302, 0x12}, {0x0303, 0x19}, {0x0304, 0x17},
    {0x0306, 0x15}, {0x0307, 0x10}, {0x0308, 0x13}, {0x030A, 0x1A}, {0x030B, 0x1D},
    {0x030C, 0x14}, {0x0327, 0x1C}, {0x0328, 0x1B},
};
constexpr uchar strokeWeight = 0x21;
constexpr uchar dotlessWeight = 0x04;

struct Stroked {
    char16_t character;
    char letter;
    uchar accent;
};

// Letters with an accent that Unicode does not take apart.
constexpr Stroked strokedLetters[] = {
    {0x0111, 'd', strokeWeight}, {0x0127, 'h', strokeWeight}, {0x0131, 'i', dotlessWeight},
    {0x0142, 'l', strokeWeight}, {0x0167, 't', strokeWeight},
};

bool isBlank(QChar c) { return c == u' ' || c == QChar(0x3000); }

QStringView withoutTrailingBlanks(QStringView text)
{
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text;
}

const Weight& latin1(char32_t c) { return latin1Weights[c]; }

// Full-width forms and superscript digits stand for the plain character.
char32_t plainForm(char32_t c)
{
    if (c >= 0xFF01 && c <= 0xFF5E)
        return c - 0xFEE0;
    if (c == 0x3000)
        return U' ';
    if (c == 0x2070 || (c >= 0x2074 && c <= 0x2079))
        return c - 0x2070 + U'0';
    return c;
}

template<typename Bytes> void appendWide(Bytes& bytes, char32_t c)
{
    // Above every lead byte of the table and in the order of code points.
    bytes.append(char(0x80 + (c >> 14)));
    bytes.append(char(0x80 | ((c >> 7) & 0x7F)));
    bytes.append(char(0x80 | (c & 0x7F)));
}

using Buffer = QVarLengthArray<char, 512>;

// The levels of a text, character by character.
class Levels {
public:
    void add(QStringView text);
    QByteArray key() const;
    QByteArray primaries() const { return QByteArray(m_primary.data(), m_primary.size()); }

private:
    void addCharacter(char32_t c);
    void addLatin1(char32_t c);
    void addBase(char first, char second, uchar accent);
    void addMark(char32_t mark);
    void addMarkWeight(Buffer& to, char32_t mark);
    void addEntry(uchar kind);

    bool m_markable = false;
    Buffer m_primary;
    Buffer m_accents;
    Buffer m_ignorables;
    qsizetype m_weights = 0;
    qsizetype m_lastAccent = 0; // Length of the accents up to the last that counts.
};

void Levels::add(QStringView text)
{
    qsizetype at = 0;
    while (at < text.size()) {
        const char32_t c = nextCodePoint(text, at);
        if (c >= 0x300 && QChar::combiningClass(c) != 0)
            addMark(c);
        else
            addCharacter(folded(plainForm(c)));
    }
}

void Levels::addCharacter(char32_t c)
{
    if (c < 0x100) {
        addLatin1(c);
        return;
    }
    if (c == 0x0153) { // œ
        addLatin1(U'o');
        addLatin1(U'e');
        return;
    }
    for (const Stroked& s : strokedLetters) {
        if (s.character == c) {
            addBase(char(latin1(uchar(s.letter)).first), 0, s.accent);
            return;
        }
    }
    appendWide(m_primary, c);
    m_accents.append(char(noAccent));
    ++m_weights;
    m_markable = true;
}

void Levels::addLatin1(char32_t c)
{
    const Weight& w = latin1(c);
    switch (w.kind) {
    case Weight::X:
        break;
    case Weight::U:
        addEntry(ignorableEntry);
        m_ignorables.append(char(w.first));
        m_markable = false;
        break;
    case Weight::S:
        addBase(char(w.first), char(w.second), w.accent);
        break;
    case Weight::E:
        addBase(char(w.first), 0, w.accent);
        addBase(char(w.second), 0, w.accent);
        break;
    }
}

void Levels::addBase(char first, char second, uchar accent)
{
    m_primary.append(first);
    if (second != 0)
        m_primary.append(second);
    m_accents.append(char(accent));
    if (accent != noAccent)
        m_lastAccent = m_accents.size();
    ++m_weights;
    m_markable = true;
}

void Levels::addMark(char32_t mark)
{
    if (!m_markable) {
        addEntry(strayMarkEntry);
        addMarkWeight(m_ignorables, mark);
        return;
    }
    // The first mark takes the place of "no accent"; a further one follows an escape, so that the
    // accents of the next letter keep their place.
    if (uchar(m_accents.back()) == noAccent)
        m_accents.removeLast();
    else
        m_accents.append(char(furtherAccent));
    addMarkWeight(m_accents, mark);
    m_lastAccent = m_accents.size();
}

void Levels::addMarkWeight(Buffer& to, char32_t mark)
{
    if (mark >= 0x370) {
        to.append(char(wideAccent));
        appendWide(to, mark);
        return;
    }
    for (const Mark& known : latinMarks) {
        if (known.character == mark) {
            to.append(char(known.weight));
            return;
        }
    }
    to.append(char(0x70 + (mark - 0x300)));
}

// The position counts by four from 7. Two bytes hold those of any indexed text; the longer form
// sorts behind.
void Levels::addEntry(uchar kind)
{
    const qsizetype position = 7 + 4 * m_weights;
    if (position < 0x7F00) {
        m_ignorables.append(char(0x80 | (position >> 8)));
    } else {
        m_ignorables.append(char(0xFF));
        for (int shift = 32; shift > 0; shift -= 8)
            m_ignorables.append(char(position >> shift));
    }
    m_ignorables.append(char(position));
    m_ignorables.append(char(kind));
}

QByteArray Levels::key() const
{
    QByteArray result;
    result.reserve(m_primary.size() + m_lastAccent + m_ignorables.size() + 4);
    result.append(m_primary.data(), m_primary.size());
    result.append(levelEnd);
    result.append(m_accents.data(), m_lastAccent);
    if (!m_ignorables.isEmpty()) {
        result.append(3, levelEnd);
        result.append(m_ignorables.data(), m_ignorables.size());
    }
    return result;
}

// Texts of Latin-1 without accents and hyphens, which are most: one pass into the result. Gives a
// null array for any other text.
QByteArray plainKey(QStringView text)
{
    QByteArray result(2 * text.size() + 1, Qt::Uninitialized);
    char* const begin = result.data();
    char* to = begin;
    for (const QChar character : text) {
        const char16_t c = character.unicode();
        if (c >= 0x100)
            return {};
        const Weight& w = latin1(c);
        if (w.kind == Weight::X)
            continue;
        if (w.kind == Weight::U || w.accent != noAccent)
            return {};
        *to++ = char(w.first);
        if (w.second != 0)
            *to++ = char(w.second);
    }
    *to++ = levelEnd;
    result.truncate(to - begin);
    return result;
}

// Canonical decomposition: a letter before its marks, however it was typed.
QString decomposed(QStringView text) { return text.toString().normalized(QString::NormalizationForm_D); }

Levels levels(QStringView text)
{
    Levels result;
    if (allBelow(text, 0x100))
        result.add(text);
    else
        result.add(decomposed(text));
    return result;
}

} // namespace

QByteArray key(QStringView text)
{
    text = withoutTrailingBlanks(text);
    QByteArray plain = plainKey(text);
    return plain.isNull() ? levels(text).key() : plain;
}

QByteArray prefixKey(QStringView prefix)
{
    // A blank at the end of the prefix may be the end of the text, and then it has no weight.
    return levels(withoutTrailingBlanks(prefix)).primaries();
}

QByteArray prefixKeyEnd(QStringView prefix) { return prefixKey(prefix) + char(aboveAll); }

bool equal(QStringView a, QStringView b) { return a == b || key(a) == key(b); }

int compare(QStringView a, QStringView b) { return key(a).compare(key(b)); }

} // namespace jet::text
