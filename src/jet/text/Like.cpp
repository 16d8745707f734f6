#include "jet/text/Like.h"

#include "jet/Error.h"
#include "jet/text/Fold.h"

#include <QVarLengthArray>

namespace jet::text {

namespace {

// Characters that equal two letters, after folding.
struct Pair {
    char32_t first;
    char32_t second; // 0 for an ordinary character.
};

Pair expanded(char32_t c)
{
    switch (c) {
    case 0xDF: // ß
        return {U's', U's'};
    case 0xE6: // æ
        return {U'a', U'e'};
    case 0xFE: // þ
        return {U't', U'h'};
    case 0x153: // œ
        return {U'o', U'e'};
    default:
        return {c, 0};
    }
}

// A letter typed with a combining accent is the letter with the accent. Below U+0300 there is nothing
// to compose, and nothing is copied.
QStringView composed(QStringView text, QString& storage)
{
    if (allBelow(text, 0x300))
        return text;
    storage = text.toString().normalized(QString::NormalizationForm_C);
    return storage;
}

} // namespace

/// The text as matching sees it: units, where an expanded character is two units of one character.
class LikePattern::Subject {
public:
    explicit Subject(QStringView text)
    {
        QString storage;
        const QStringView view = composed(text, storage);
        m_units.resize(2 * view.size()); // What every character expanded would take.
        Unit* to = m_units.data();
        for (qsizetype at = 0; at < view.size();) {
            const char32_t c = folded(nextCodePoint(view, at));
            const Pair pair = expanded(c);
            *to++ = {c, pair.first, true};
            if (pair.second != 0)
                *to++ = {0, pair.second, false};
        }
        m_size = to - m_units.data();
    }

    qsizetype size() const { return m_size; }
    bool isStart(qsizetype at) const { return at == size() || m_units[at].start; }
    char32_t unit(qsizetype at) const { return m_units[at].unit; }
    char32_t character(qsizetype at) const { return m_units[at].character; }
    qsizetype next(qsizetype at) const
    {
        do {
            ++at;
        } while (!isStart(at));
        return at;
    }

private:
    struct Unit {
        char32_t character; // The whole character, at its first unit.
        char32_t unit;
        bool start;
    };
    QVarLengthArray<Unit, 128> m_units;
    qsizetype m_size = 0;
};

class LikePattern::Parser {
public:
    Parser(LikePattern& target, QStringView text) : m_target(target), m_text(text) {}

    void run()
    {
        while (m_at < m_text.size() && !m_broken) {
            const qsizetype start = m_at;
            const char32_t c = nextCodePoint(m_text, m_at);
            if (c == U'*')
                wildcard(Element::Any);
            else if (c == U'?')
                wildcard(Element::One);
            else if (c == U'#')
                wildcard(Element::Digit);
            else if (c == U'[')
                list();
            else
                literal(m_text.sliced(start, m_at - start), c);
        }
    }

private:
    void wildcard(Element::Kind kind)
    {
        m_target.m_literal = false;
        auto& elements = m_target.m_elements;
        if (kind != Element::Any || elements.empty() || elements.back().kind != Element::Any)
            elements.push_back({kind, 0, false, {}});
    }

    void literal(QStringView written, char32_t c)
    {
        const Pair pair = expanded(folded(c));
        m_target.m_elements.push_back({Element::Literal, pair.first, false, {}});
        if (pair.second != 0)
            m_target.m_elements.push_back({Element::Literal, pair.second, false, {}});
        if (m_target.m_literal)
            m_target.m_prefix += written;
    }

    // A list that never ends, or a range that runs backwards, only fails when matching gets there.
    void broken()
    {
        m_broken = true;
        wildcard(Element::Broken);
    }

    void list()
    {
        const qsizetype end = m_text.indexOf(u']', m_at);
        if (end < 0)
            return broken();
        QStringView body = m_text.sliced(m_at, end - m_at);
        m_at = end + 1;
        if (body.isEmpty())
            return;
        if (body.size() == 1 && !body[0].isLetter()) // [*] [?] [#] [[] and [!]
            return literal(body, body[0].unicode());
        Element set{Element::Set, 0, body[0] == u'!', {}};
        if (set.negated)
            body = body.sliced(1);
        if (!ranges(body, set))
            return broken();
        m_target.m_literal = false;
        m_target.m_elements.push_back(std::move(set));
    }

    // "-" between two characters makes a range; first or last it is itself.
    static bool ranges(QStringView body, Element& set)
    {
        qsizetype at = 0;
        while (at < body.size()) {
            const char32_t low = folded(nextCodePoint(body, at));
            char32_t high = low;
            if (at + 1 < body.size() && body[at] == u'-') {
                ++at;
                high = folded(nextCodePoint(body, at));
            }
            if (high < low)
                return false;
            set.ranges.emplace_back(low, high);
        }
        return true;
    }

    LikePattern& m_target;
    QStringView m_text;
    qsizetype m_at = 0;
    bool m_broken = false;
};

LikePattern::LikePattern(QStringView pattern) : m_pattern(pattern.toString())
{
    QString storage;
    Parser(*this, composed(m_pattern, storage)).run();
}

QString LikePattern::prefix() const { return m_prefix; }

bool LikePattern::isLiteral() const { return m_literal; }

bool LikePattern::matchesOne(const Element& element, const Subject& subject, qsizetype& at) const
{
    if (at >= subject.size())
        return false;
    if (element.kind == Element::Literal)
        return subject.unit(at++) == element.character;
    if (element.kind == Element::Broken)
        fail(93, m_pattern);
    if (!subject.isStart(at))
        return false;
    const char32_t c = subject.character(at);
    at = subject.next(at);
    if (element.kind == Element::Digit)
        return c >= U'0' && c <= U'9';
    if (element.kind == Element::One)
        return true;
    const auto within = [c](const auto& range) { return c >= range.first && c <= range.second; };
    return std::any_of(element.ranges.begin(), element.ranges.end(), within) != element.negated;
}

// Only the last "*" met is ever taken back: what an earlier one might take, this one can. So the work is
// at most the product of both lengths, whatever the pattern.
bool LikePattern::matches(QStringView text) const
{
    const Subject subject(text);
    size_t element = 0, afterAny = 0;
    qsizetype at = 0, retry = 0;
    bool anySeen = false;
    while (true) {
        if (element == m_elements.size()) {
            if (at == subject.size())
                return true;
        } else if (m_elements[element].kind == Element::Any) {
            if (subject.isStart(at)) {
                afterAny = ++element;
                retry = at;
                anySeen = true;
                continue;
            }
        } else if (matchesOne(m_elements[element], subject, at)) {
            ++element;
            continue;
        }
        if (!anySeen || retry >= subject.size())
            return false;
        retry = subject.next(retry);
        // Most patterns go on with a letter: look for its next place at once.
        if (afterAny < m_elements.size() && m_elements[afterAny].kind == Element::Literal) {
            while (retry < subject.size() && subject.unit(retry) != m_elements[afterAny].character)
                retry = subject.next(retry);
        }
        at = retry;
        element = afterAny;
    }
}

} // namespace jet::text
