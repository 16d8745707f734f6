#include "HouseRules.h"

#include <QHash>
#include <QRegularExpression>
#include <functional>

using namespace Qt::StringLiterals;

namespace house {

namespace {

struct Source {
    QString path;
    QString raw;
    QString code; ///< Without comments; the raw text for what is not C++.
    QStringList widgetHeaders;

    bool isCpp() const { return path.endsWith(u".h"_s) || path.endsWith(u".cpp"_s); }
    bool under(QStringView folder) const { return path.startsWith(folder); }
    bool isWindow() const { return path.contains(u"/ui/"_s) || path.endsWith(u"/main.cpp"_s); }
    /// "jet" for src/jet/…; empty outside src.
    QString room() const { return under(u"src/") ? path.section(u'/', 1, 1) : QString(); }
};

/// The floor of each folder under src; a folder may use what stands on a lower one.
int floorOf(const QString& room)
{
    static const QHash<QString, int> floors{
        {u"jet"_s, 1},     {u"platform"_s, 1}, {u"addin"_s, 1},     {u"data"_s, 2},
        {u"editing"_s, 3}, {u"images"_s, 3},   {u"reference"_s, 4}, {u"map"_s, 5},
        {u"query"_s, 6},   {u"app"_s, 7},      {u"cli"_s, 8}};
    return floors.value(room, 0);
}

using Accept = std::function<bool(const QRegularExpressionMatch&)>;

/// Lines on which `pattern` matches and `refused` agrees.
QList<int> linesOf(const QString& text, const QString& pattern, const Accept& refused = {})
{
    static QHash<QString, QRegularExpression> compiled;
    auto known = compiled.find(pattern);
    if (known == compiled.end()) {
        known = compiled.insert(
            pattern,
            QRegularExpression(pattern, QRegularExpression::MultilineOption |
                                            QRegularExpression::UseUnicodePropertiesOption));
    }
    QList<int> lines;
    for (auto it = known->globalMatch(text); it.hasNext();) {
        const auto match = it.next();
        if (!refused || refused(match)) {
            lines << static_cast<int>(text.left(match.capturedStart()).count(u'\n')) + 1;
        }
    }
    return lines;
}

struct Rule {
    QString name;
    std::function<QList<int>(const Source&)> breaches;
};

QList<int> moduleIncludes(const Source& s)
{
    return s.isCpp() ? linesOf(s.code, uR"(^[ \t]*#[ \t]*include[ \t]*<Qt[A-Z]\w*/)"_s)
                     : QList<int>();
}

QList<int> parentIncludes(const Source& s)
{
    return s.isCpp() ? linesOf(s.code, uR"(^[ \t]*#[ \t]*include[ \t]*"\.\./)"_s) : QList<int>();
}

QList<int> storeOutsideEngine(const Source& s)
{
    if (!s.isCpp() || !s.under(u"src/") || s.under(u"src/jet/")) {
        return {};
    }
    return linesOf(s.code, uR"(^[ \t]*#[ \t]*include[ \t]*[<"]sqlite3)"_s);
}

QList<int> widgetsOutsideWindows(const Source& s)
{
    if (!s.isCpp() || !s.under(u"src/") || s.isWindow()) {
        return {};
    }
    return linesOf(s.code, uR"(^[ \t]*#[ \t]*include[ \t]*<(Q\w+)>)"_s,
                   [&s](const auto& match) { return s.widgetHeaders.contains(match.captured(1)); });
}

QList<int> boxesOutsideDialogues(const Source& s)
{
    if (!s.isCpp() || !s.under(u"src/") || s.under(u"src/platform/ui/")) {
        return {};
    }
    return linesOf(s.code, uR"(\bQ(Message|Error)Box\b|\bQ(Input|File|ErrorMessage)Dialog\b)"_s);
}

QList<int> patternsOverStatements(const Source& s)
{
    if (!s.under(u"src/jet/") && !s.under(u"src/query/")) {
        return {};
    }
    return linesOf(s.code, uR"(\bQRegularExpression\b|\bstd::w?regex\b|\bregcomp\b)"_s);
}

QList<int> upwardIncludes(const Source& s)
{
    const QString room = s.room();
    if (!s.isCpp() || floorOf(room) == 0) {
        return {};
    }
    return linesOf(s.code, uR"(^[ \t]*#[ \t]*include[ \t]*"(\w+)/)"_s, [&room](const auto& match) {
        const QString other = match.captured(1);
        return other != room && floorOf(other) >= floorOf(room);
    });
}

QList<int> windowsUsedByLogic(const Source& s)
{
    if (!s.isCpp() || !s.under(u"src/") || s.isWindow()) {
        return {};
    }
    return linesOf(s.code, uR"(^[ \t]*#[ \t]*include[ \t]*"([^"]*/)?ui/)"_s);
}

QList<int> unknownRooms(const Source& s)
{
    const bool known = !s.isCpp() || !s.under(u"src/") || floorOf(s.room()) > 0;
    return known ? QList<int>() : QList<int>{0};
}

QList<int> namesNotAscii(const Source& s)
{
    const bool ascii =
        std::all_of(s.path.begin(), s.path.end(), [](QChar c) { return c.unicode() < 128; });
    return ascii ? QList<int>() : QList<int>{0};
}

QList<int> chainedArguments(const Source& s)
{
    if (!s.isCpp() || !s.under(u"src/")) {
        return {};
    }
    // A value that holds "%2" is filled again by the second call.
    return linesOf(s.code, uR"(\.arg(\((?:[^()]|(?1))*\))\s*\.arg\s*\()"_s);
}

QList<int> emptyCatches(const Source& s)
{
    return s.isCpp() ? linesOf(s.code, uR"(\bcatch\s*\([^)]*\)\s*\{\s*\})"_s) : QList<int>();
}

QList<int> wordsOfThePlanning(const Source& s)
{
    // Put together from pieces, or this file would be the first to break the rule.
    static const QString words = uR"((?i:\bParts?[ \x{a0}][1-7]\.[0-9]\b|\bspec)"_s +
                                 uR"(\.md\b|\bspeci)"_s + uR"(fication\b|\bthe\s+spe)"_s +
                                 uR"(c\b|\b(?:facts-\w+|design|style)\.m)"_s +
                                 uR"(d\b|\bissues?[ ]#?[0-9]+\b))"_s;
    // Standards of others are spoken of by that word.
    static const QRegularExpression standards(
        uR"(kml|gpx|exif|sqlite|darwin|qt |rfc|freedesktop|xdg)"_s,
        QRegularExpression::CaseInsensitiveOption);
    const QStringList lines = s.raw.split(u'\n');
    QList<int> found = linesOf(s.raw, words);
    found.removeIf([&lines](int line) { return lines.at(line - 1).contains(standards); });
    return found;
}

const QList<Rule>& rules()
{
    static const QList<Rule> all{
        {u"include-module-qt"_s, moduleIncludes},
        {u"include-parent"_s, parentIncludes},
        {u"sqlite-hors-du-moteur"_s, storeOutsideEngine},
        {u"widgets-hors-de-ui"_s, widgetsOutsideWindows},
        {u"boites-hors-de-dialogues"_s, boxesOutsideDialogues},
        {u"expressions-sur-sql"_s, patternsOverStatements},
        {u"include-vers-le-haut"_s, upwardIncludes},
        {u"logique-vers-fenetre"_s, windowsUsedByLogic},
        {u"dossier-sans-etage"_s, unknownRooms},
        {u"nom-non-ascii"_s, namesNotAscii},
        {u"arg-en-chaine"_s, chainedArguments},
        {u"catch-vide"_s, emptyCatches},
        {u"mots-du-plan"_s, wordsOfThePlanning},
    };
    return all;
}

} // namespace

QStringList ruleNames()
{
    QStringList names;
    for (const Rule& rule : rules()) {
        names << rule.name;
    }
    return names;
}

QString withoutComments(const QString& text)
{
    enum class State { Code, Line, Block, Text, Character, Raw } state = State::Code;
    QString out = text;
    QString rawEnd;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QStringView rest = QStringView(text).sliced(i);
        switch (state) {
        case State::Code:
            if (rest.startsWith(u"//")) {
                state = State::Line;
                out[i] = u' ';
            } else if (rest.startsWith(u"/*")) {
                state = State::Block;
                out[i] = u' ';
            } else if (rest.startsWith(u"R\"")) {
                rawEnd = u')' +
                         rest.sliced(2, qMax<qsizetype>(rest.indexOf(u'(') - 2, 0)).toString() +
                         u'"';
                state = State::Raw;
            } else if (rest.startsWith(u'"')) {
                state = State::Text;
            } else if (rest.startsWith(u'\'') && !(i > 0 && text.at(i - 1).isDigit())) {
                state = State::Character;
            }
            break;
        case State::Line:
            state = rest.startsWith(u'\n') ? State::Code : State::Line;
            out[i] = rest.front() == u'\n' ? u'\n' : u' ';
            break;
        case State::Block:
            if (rest.startsWith(u"*/")) {
                state = State::Code;
                out[i + 1] = u' ';
                out[i++] = u' ';
            } else if (rest.front() != u'\n') {
                out[i] = u' ';
            }
            break;
        case State::Text:
        case State::Character:
            if (rest.startsWith(u'\\')) {
                ++i;
            } else if (rest.startsWith(state == State::Text ? u'"' : u'\'')) {
                state = State::Code;
            }
            break;
        case State::Raw:
            if (rest.startsWith(rawEnd)) {
                i += rawEnd.size() - 1;
                state = State::Code;
            }
            break;
        }
    }
    return out;
}

QList<Finding> examine(const QString& path, const QString& text, const QStringList& widgetHeaders)
{
    Source source{path, text, text, widgetHeaders};
    if (source.isCpp()) {
        source.code = withoutComments(text);
    }
    const QStringList lines = text.split(u'\n');
    QList<Finding> findings;
    for (const Rule& rule : rules()) {
        for (const int line : rule.breaches(source)) {
            findings << Finding{path, line, rule.name, lines.value(line - 1).trimmed()};
        }
    }
    return findings;
}

} // namespace house
