// herbora-cli importer csv PROJET TABLEAU --module MODULE
#include "app/import/CsvImport.h"
#include "cli/Bench.h"
#include "cli/Commands.h"

namespace cli {

using namespace Qt::StringLiterals;

namespace {

const QString usage = u"Usage : herbora-cli importer csv PROJET TABLEAU --module MODULE [--essai] [--creer-noms] "
                      "[--separateur S] [--encodage E] [--decimale D] [--colonnes \"TITRE=CHAMP;…\"] [--mettre-a-jour [--vider]]"_s;

/// The option's value among the words that it may have; throws UsageError.
template<typename T> T chosen(const Arguments& arguments, const QString& option, const QList<std::pair<QString, T>>& words, T byDefault)
{
    if (!arguments.has(option))
        return byDefault;
    const QString given = arguments.options.value(option);
    QStringList known;
    for (const auto& [word, value] : words) {
        if (word.compare(given, Qt::CaseInsensitive) == 0)
            return value;
        known << word;
    }
    throw UsageError{u"L'option %1 attend : %2"_s.arg(option, known.join(u", "_s))};
}

app::CsvFormat formatOf(const Arguments& arguments, const QString& file)
{
    using Format = app::CsvFormat;
    static const QList<std::pair<QString, QChar>> separators{{u"point-virgule"_s, u';'}, {u"virgule"_s, u','}, {u"tabulation"_s, u'\t'},
                                                             {u";"_s, u';'}, {u","_s, u','}, {u"\t"_s, u'\t'}};
    static const QList<std::pair<QString, Format::Encoding>> encodings{{u"utf-8"_s, Format::Utf8}, {u"windows-1252"_s, Format::Windows1252},
                                                                       {u"utf-16le"_s, Format::Utf16LE}, {u"utf-16be"_s, Format::Utf16BE}};
    static const QList<std::pair<QString, QChar>> decimals{{u"virgule"_s, u','}, {u"point"_s, u'.'}, {u","_s, u','}, {u"."_s, u'.'}};
    Format format = app::detectCsvFormat(file);
    format.separator = chosen(arguments, u"--separateur"_s, separators, format.separator);
    format.encoding = chosen(arguments, u"--encodage"_s, encodings, format.encoding);
    format.decimal = chosen(arguments, u"--decimale"_s, decimals, format.decimal);
    return format;
}

/// Takes "TITRE=CHAMP" over into the mapping; an empty field stands for a column that is not taken.
void assign(app::ImportPlan& plan, const QStringList& header, const QString& assignments)
{
    for (const QString& assignment : assignments.split(u';', Qt::SkipEmptyParts)) {
        const QString title = app::foldedName(assignment.section(u'=', 0, 0));
        const QString wanted = app::foldedName(assignment.section(u'=', 1));
        const auto column = std::find_if(header.begin(), header.end(), [&](const QString& h) { return app::foldedName(h) == title; });
        const auto field = std::find_if(plan.target.fields.begin(), plan.target.fields.end(), [&](const app::ImportField& f) {
            return app::foldedName(f.caption) == wanted || app::foldedName(f.key) == wanted;
        });
        if (column == header.end() || !assignment.contains(u'='))
            throw UsageError{u"Le tableau n'a pas de colonne « %1 »."_s.arg(assignment.section(u'=', 0, 0))};
        if (field == plan.target.fields.end() && !wanted.isEmpty())
            throw UsageError{u"« %1 » n'a pas de champ « %2 »."_s.arg(plan.target.label, assignment.section(u'=', 1))};
        const QString key = wanted.isEmpty() ? QString() : field->key;
        if (const qsizetype before = plan.mapping.indexOf(key); before >= 0 && !key.isEmpty())
            plan.mapping[before].clear();
        plan.mapping[column - header.begin()] = key;
    }
}

app::ImportPlan planOf(const Arguments& arguments, app::Session& session, const QString& file)
{
    app::ImportPlan plan{.file = file};
    const QString module = arguments.options.value(u"--module"_s);
    plan.target = app::importTarget(module, session.modules(), session.database().schema());
    if (!plan.target.isValid()) {
        QStringList known;
        for (const app::ImportTarget& target : app::importTargets(session.modules(), session.database().schema()))
            known << target.name;
        throw UsageError{u"Le projet n'a pas de module « %1 ». Modules et listes : %2"_s.arg(module, known.join(u", "_s))};
    }
    plan.format = formatOf(arguments, file);
    plan.update = arguments.has(u"--mettre-a-jour"_s);
    plan.emptyErases = arguments.has(u"--vider"_s);
    plan.createNames = arguments.has(u"--creer-noms"_s);
    const QStringList header = app::CsvReader(file, plan.format).header();
    plan.mapping = app::mapColumns(header, plan.target, app::keptMapping(session.properties(), plan.target.name), plan.update);
    assign(plan, header, arguments.options.value(u"--colonnes"_s));
    printLine(u"Séparateur : %1, encodage : %2, marque décimale : « %3 »"_s.arg(
        app::separatorName(plan.format.separator), app::encodingName(plan.format.encoding), plan.format.decimal));
    for (qsizetype i = 0; i < header.size(); ++i) {
        const app::ImportField* field = plan.target.field(plan.mapping[i]);
        printLine(u"   %1 -> %2"_s.arg(header[i], field ? field->caption : u"(non importée)"_s));
    }
    return plan;
}

} // namespace

int runImportCsv(const Arguments& arguments)
{
    if (arguments.words.size() != 3 || !arguments.has(u"--module"_s))
        throw UsageError{usage};
    // In whatever order they are given, the project is the one that has the name of one.
    const bool projectFirst = arguments.words[1].endsWith(u".hbx"_s, Qt::CaseInsensitive);
    const QString table = arguments.words[projectFirst ? 2 : 1];
    Bench bench(arguments, true);
    TerminalProgression quiet(false);
    if (!bench.session.open(arguments.words[projectFirst ? 1 : 2], quiet))
        return Failure;
    try {
        const app::ImportPlan plan = planOf(arguments, bench.session, table);
        app::CsvImport import(bench.session);
        if (const QString problem = app::CsvImport::problem(plan); !problem.isEmpty()) {
            printError(problem);
            return Failure;
        }
        const app::ImportReport report = import.run(plan, bench.progression, arguments.has(u"--essai"_s));
        printLine({});
        printLine(report.text());
    } catch (const jet::Error& error) {
        printError(u"Erreur "_s + QString::number(error.number()) + u" : "_s + error.description());
        return Failure;
    }
    return Success;
}

} // namespace cli
