#include "app/import/ImportReport.h"

#include <QLocale>
#include <algorithm>

namespace app {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype mostReasons = 100;
constexpr qsizetype longestExample = 60;

QString shortened(const QString& text)
{
    const QString line = text.simplified();
    return line.size() > longestExample ? line.first(longestExample) + u'…' : line;
}

QString examplesText(const ImportProblem& problem)
{
    QStringList examples;
    for (const ImportProblem::Example& example : problem.examples)
        examples << (example.text.isEmpty() ? u"ligne %1"_s.arg(example.line)
                                            : u"ligne %1 : « %2 »"_s.arg(QString::number(example.line), example.text));
    const bool more = problem.rows > problem.examples.size();
    return examples.join(u" ; "_s) + (more ? u" …"_s : QString());
}

} // namespace

bool concernsRow(int error)
{
    switch (error) {
    case 3022: // duplicate value
    case 3163: // too wide
    case 3200: // referred to
    case 3201: // refers to nothing
    case 3314: // Null
    case 3315: // zero length
    case 3316: // validation rule of the table
    case 3317: // … of a field
    case 3421: // type
        return true;
    default:
        return false;
    }
}

void ImportReport::refuse(const QString& reason, qint64 line, const QString& text)
{
    ++refused;
    const QString kind = problems.size() < mostReasons ? reason : u"Autres motifs"_s;
    auto problem = std::find_if(problems.begin(), problems.end(), [&](const ImportProblem& p) { return p.reason == reason; });
    if (problem == problems.end())
        problem = std::find_if(problems.begin(), problems.end(), [&](const ImportProblem& p) { return p.reason == kind; });
    if (problem == problems.end())
        problem = problems.insert(problems.end(), {kind, 0, {}});
    ++problem->rows;
    if (problem->examples.size() < ImportProblem::mostExamples)
        problem->examples.append({line, shortened(text)});
}

void ImportReport::sortProblems()
{
    std::stable_sort(problems.begin(), problems.end(), [](const ImportProblem& a, const ImportProblem& b) { return a.rows > b.rows; });
}

QString ImportReport::text() const
{
    const QLocale locale;
    const auto count = [&](const QString& what, qint64 number) { return what + u" : "_s + locale.toString(number); };
    QStringList lines;
    if (rehearsal)
        lines << u"Essai à blanc : rien n'a été écrit dans le projet."_s;
    lines << count(u"Lignes lues"_s, rows) << count(rehearsal ? u"Enregistrements à ajouter"_s : u"Enregistrements ajoutés"_s, added);
    if (changed > 0)
        lines << count(rehearsal ? u"Enregistrements à modifier"_s : u"Enregistrements modifiés"_s, changed);
    if (present > 0)
        lines << count(u"Déjà présents, laissés tels quels"_s, present);
    if (under > 0)
        lines << count(rehearsal ? u"Déterminations à ajouter avec leur individu"_s : u"Déterminations ajoutées avec leur individu"_s, under);
    for (const auto& [what, number] : created)
        lines << count((rehearsal ? u"Noms à créer dans %1"_s : u"Noms créés dans %1"_s).arg(what), number);
    lines << count(u"Lignes refusées"_s, refused);
    for (const ImportProblem& problem : problems)
        lines << u"   "_s + count(problem.reason, problem.rows) << u"      "_s + examplesText(problem);
    if (!refusedFile.isEmpty())
        lines << u"Les lignes refusées et leurs motifs sont dans « %1 »"_s.arg(refusedFile);
    return lines.join(u'\n');
}

} // namespace app
