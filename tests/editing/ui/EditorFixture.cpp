#include "EditorFixture.h"

#include "data/FieldType.h"

namespace support {

using namespace Qt::StringLiterals;

namespace {

data::ModuleRecord essais()
{
    using namespace data;
    const auto field = [](const QString& column, int type, const QString& help, qint32 flags = 0) {
        FieldRecord record;
        record.caption = column;
        record.column = column;
        record.type = type;
        record.help = help;
        record.flags |= flags;
        return record;
    };
    ModuleRecord module;
    module.name = u"Essais"_s;
    module.label = u"Essai"_s;
    module.index = 3;
    module.help = u"Un champ de chaque type"_s;
    module.fields = {
        field(u"Titre"_s, Texte, u"Ce que l'essai montre"_s, Obligatoire),
        field(u"Longitude"_s, Longitude, u"Longitude du point"_s),
        field(u"Latitude"_s, Latitude, u"Latitude du point"_s),
        field(u"OuiNon"_s, OuiNon, u"Vrai ou faux"_s),
        field(u"Réel"_s, Réel, u"Une mesure, en mètres"_s),
        field(u"Entier"_s, Entier, u"Un compte"_s),
        field(u"Date"_s, Date, u"Date, même partielle"_s),
        field(u"Image"_s, Image, u"Fichier d'une image"_s),
        field(u"Mémo"_s, TexteMémo, u"Remarques"_s),
        field(u"Multiple"_s, ListeMultiple, u"Plusieurs descripteurs"_s),
        field(u"Simple"_s, ListeSimple, u"Un descripteur"_s),
        field(u"ID Collecteurs"_s, Botaniste, u"Une personne"_s),
        field(u"ID Localités"_s, Localité, u"Un lieu"_s),
        field(u"ID Taxons"_s, Taxon, u"Un nom"_s),
        field(u"ID Déterminations"_s, LienCourant, u"Une détermination de l'individu"_s),
    };
    module.fields.last().provider = u"Déterminations"_s;
    module.fields[4].rule = u">0"_s;
    module.fields[4].ruleText = u"Une mesure est un nombre positif"_s;
    module.fields[9].descriptors = {u"sec"_s, u"humide"_s, u"mouillé"_s};
    module.fields[10].descriptors = {u"rare"_s, u"commun"_s, u"très commun"_s};
    for (qsizetype i = 0; i < module.fields.size(); ++i)
        module.fields[i].index = int(i);
    return module;
}

void fill(jet::Database& db)
{
    const auto run = [&](const QString& statement) { db.Execute(statement); };
    for (const QString& name : {u"Quercus"_s, u"Quercus robur"_s, u"Quercus petraea"_s, u"Rosa canina"_s})
        run(u"INSERT INTO Taxons ([Taxon],[Nom Complet],[Auteurs]) VALUES (\"x\",\"%1\",\"L.\")"_s.arg(name));
    run(u"INSERT INTO Collecteurs ([Collecteur],[Initiales]) VALUES (\"Martin, Rose\",\"RM\")"_s);
    run(u"INSERT INTO Collecteurs ([Collecteur],[Initiales]) VALUES (\"Martinez, Juan\",\"JM\")"_s);
    run(u"INSERT INTO Localités ([Localité],[LongDD],[LatDD],[Nom Entier]) VALUES (\"Saül\",-53.2,3.6,\"Guyane - Saül\")"_s);
    for (const QString& number : {u"A1"_s, u"A2"_s, u"A3"_s})
        run(u"INSERT INTO Individus ([Numéro]) VALUES (\"%1\")"_s.arg(number));
    for (const int taxon : {2, 3})
        run(u"INSERT INTO Déterminations ([ID Individus],[ID Taxons],[KeyParent]) VALUES (1,%1,\"1-Individus\")"_s.arg(taxon));
    run(u"INSERT INTO Essais ([ID Individus],[Titre],[KeyParent]) VALUES (1,\"premier\",\"1-Individus\")"_s);
}

} // namespace

void EditorTest::SetUp()
{
    project.create();
    auto& session = project.session;
    session.dictionary().put(essais());
    session.dictionary().save();
    session.dictionary().load();
    fill(project.db());
    context.nextId = [this] { return ++counter; };
    const reference::ReferenceContext reference{project.db(), project.clock, project.dialogues, context};
    taxa = std::make_unique<reference::Cl_Taxon>(reference);
    places = std::make_unique<reference::Cl_Localité>(reference);
    people = std::make_unique<reference::Cl_Collecteur>(reference);
    context.names = std::make_shared<reference::ProjectNames>(*taxa, *places, *people);
    context.records =
        std::make_shared<editing::ProjectRecords>(project.db(), session.dictionary(), session.properties());
    rules = std::make_unique<data::RecordRules>(project.db(), session.dictionary(), project.clock, project.dialogues);
    search = std::make_unique<editing::ReferenceSearch>(project.db());
    lists = std::make_unique<editing::DescriptorLists>(project.db(), session.properties(), project.clock, project.dialogues);
    input = std::make_unique<editing::FieldInput>(&project.db());
    world.search = search.get();
    world.lists = lists.get();
    world.dialogues = &project.dialogues;
    world.take = [this](editing::Cl_Edition& field, const QVariant& value) { input->take(field, value); };
}

void EditorTest::TearDown()
{
    project.dialogues.verify();
}

editing::EditingTools EditorTest::tools()
{
    auto& session = project.session;
    return {project.db(), session.dictionary(), session.properties(), *rules, project.clock, project.dialogues, context};
}

std::unique_ptr<editing::Cl_Editions> EditorTest::form(qint32 individu, qint32 id)
{
    auto made = std::make_unique<editing::Cl_Editions>(context);
    made->setTabedition(u"Essais"_s, context.records->fields(u"Essais"_s));
    made->bind(individu, id);
    return made;
}

void EditorTest::picture(QWidget& widget, const QString& name)
{
    const QString folder = qEnvironmentVariable("HERBORA_PICTURES");
    if (!folder.isEmpty())
        widget.grab().save(folder + u'/' + name + u".png"_s);
}

} // namespace support
