#include "cli/Commands.h"

#include "app/Demo.h"
#include "app/ModuleTree.h"
#include "app/ReadyStructures.h"
#include "cli/Bench.h"
#include "data/Verification.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace cli {

using namespace Qt::StringLiterals;

namespace {

QJsonObject jsonOf(const app::TreeNode& node)
{
    QJsonArray children;
    for (const app::TreeNode& child : node.children)
        children.append(jsonOf(child));
    return {{u"cle"_s, node.key}, {u"texte"_s, node.text}, {u"icone"_s, node.icon}, {u"enfants"_s, children}};
}

void printTree(const app::TreeNode& node, int depth)
{
    printLine(QString(depth * 2, u' ') + node.text + u"   ["_s + node.key + u']');
    for (const app::TreeNode& child : node.children)
        printTree(child, depth + 1);
}

QJsonObject jsonInfos(const Bench& bench, const QString& title, const app::TreeNode& tree)
{
    QJsonArray steps;
    for (const TerminalProgression::Step& step : bench.progression.steps())
        steps.append(QJsonObject{{u"texte"_s, step.text}, {u"pourcentage"_s, step.percent}});
    return {{u"titre"_s, title}, {u"etapes"_s, steps}, {u"arbre"_s, QJsonArray{jsonOf(tree)}}};
}

/// The modules of a ready-made structure; none for an empty name.
QList<data::ModuleRecord> structureNamed(const QString& name, const app::Session& session)
{
    if (name.isEmpty())
        return {};
    QStringList names;
    const auto ready = app::readyStructures(session.surroundings().applicationFolder + u"/structures"_s);
    for (const app::ReadyStructure& structure : ready) {
        if (structure.name.compare(name, Qt::CaseInsensitive) == 0)
            return structure.modules;
        names << structure.name;
    }
    throw UsageError{u"structure inconnue : %1 (il y a : %2)"_s.arg(name, names.join(u", "_s))};
}

} // namespace

int runCreate(const Arguments& arguments)
{
    const QString file = arguments.file();
    Bench bench(arguments, false);
    const QList<data::ModuleRecord> modules = structureNamed(arguments.options.value(u"--structure"_s), bench.session);
    if (!bench.session.create(file, bench.progression, modules))
        return Failure;
    printLine(u"Projet créé : "_s + bench.session.path());
    return Success;
}

int runInfos(const Arguments& arguments)
{
    const bool json = arguments.has(u"--json"_s);
    const QString file = arguments.file();
    Bench bench(arguments, !json);
    if (!bench.session.open(file, bench.progression))
        return Failure;
    const QString title = bench.session.projectName() + u" - Herbora"_s;
    const app::TreeNode tree = app::buildModuleTree(bench.session);
    if (json) {
        printLine(QString::fromUtf8(
            QJsonDocument(jsonInfos(bench, title, tree)).toJson(QJsonDocument::Compact)));
    } else {
        printLine({});
        printLine(title);
        printTree(tree, 0);
    }
    return Success;
}

int runOptimise(const Arguments& arguments)
{
    const QString file = arguments.file();
    Bench bench(arguments, true);
    TerminalProgression quiet(false);
    if (!bench.session.open(file, quiet))
        return Failure;
    return bench.session.optimise(bench.progression) ? Success : Failure;
}

int runVerify(const Arguments& arguments)
{
    const QString file = arguments.file();
    const bool json = arguments.has(u"--json"_s);
    TerminalDialogues dialogues(Answers::No);
    QStringList findings;
    try {
        // Read-only: what an opening would repair or bring up to date is a finding here.
        jet::OpenOptions options;
        options.password = arguments.options.value(u"--mot-de-passe"_s);
        options.readOnly = true;
        const auto database = jet::Database::Open(file, options);
        platform::SystemClock clock;
        data::Dictionary dictionary(*database, clock, dialogues);
        dictionary.load();
        findings = dialogues.messages() + data::verify(*database, dictionary.modules());
    } catch (const jet::Error& error) {
        findings << u"Erreur "_s + QString::number(error.number()) + u" : "_s + error.description();
    }
    if (json)
        printLine(QString::fromUtf8(
            QJsonDocument(QJsonObject{{u"ok"_s, findings.isEmpty()},
                                      {u"constats"_s, QJsonArray::fromStringList(findings)}})
                .toJson(QJsonDocument::Compact)));
    else
        printLine(findings.isEmpty() ? u"Aucun défaut trouvé."_s : findings.join(u'\n'));
    return findings.isEmpty() ? Success : Failure;
}

int runDemo(const Arguments& arguments)
{
    const QString file = arguments.file();
    Bench bench(arguments, false);
    app::DemoOptions options;
    options.individus = arguments.number(u"--individus"_s, 0);
    options.taxons = arguments.number(u"--taxons"_s, 0);
    if (!app::buildDemo(bench.session, file, bench.progression, options))
        return Failure;
    printLine(u"Projet créé : "_s + QFileInfo(file).absoluteFilePath());
    return Success;
}

} // namespace cli
