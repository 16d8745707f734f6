// One module from its first field to its end, with records in it; the project is sound after each step.
#include "StructureFixture.h"

#include "app/ModuleTree.h"

#include <QFileInfo>

namespace {

using namespace Qt::StringLiterals;
using app::Finding;
using platform::BoxIcon;
using support::StructureProject;

const QString essais = u"Essais"_s;

class StructureStory : public ::testing::Test {
protected:
    void makeModule();
    void enterRecords();
    QString text(const QString& statement) { return project.rows(statement).join(u" / "_s); }
    void expectSound()
    {
        EXPECT_EQ(project.findings(), QStringList());
        ASSERT_TRUE(project.open()); // as the next start finds it
        EXPECT_EQ(project.findings(), QStringList());
        project.editing = std::make_unique<app::StructureEditing>(project.session);
    }
    void query(const QString& name, const QString& value)
    {
        project.session.properties().put(data::kindRequête, data::moduleIndividus, name, value);
    }
    QString query(const QString& name)
    {
        return project.session.properties().value(data::kindRequête, data::moduleIndividus, name).toString();
    }

    StructureProject project;
};

void StructureStory::makeModule()
{
    ASSERT_NE(project.addModule(essais), 0);
    for (const auto& [text, type] : app::StructureEditing::typesOffered()) {
        if (type != data::LienCourant)
            project.addField(essais, u"C "_s + QString(text).replace(u'/', u'-'), type);
    }
    app::StructureEditing& editing = *project.editing;
    const int code = project.addField(essais, u"Code"_s, data::Texte);
    editing.setFieldFlag(code, data::Unique, true);
    editing.setFieldFlag(code, data::Obligatoire, true);
    const int parcel = project.addField(essais, u"Parcelle"_s, data::Texte);
    editing.setFieldFlag(parcel, data::MixteUnique, true);
    editing.setModuleFlag(project.module(essais), data::MixteUnique, true);
    const int height = project.addField(essais, u"Hauteur"_s, data::Texte);
    ASSERT_TRUE(editing.setRule(height, u"<>\"haut\""_s));
    editing.setRuleText(height, u"Donnez une mesure"_s);
    editing.setDescriptors(project.field(essais, u"C Liste Simple"_s), {u"sec"_s, u"humide"_s});
    editing.setShortLabel(project.module(essais), u"[Code] : [Hauteur] m"_s);
    project.dialogues.expectChoice({editing.caption() + u": Ajout d'un champ de liaison"_s,
                                    u"Sélectionnez le module dont un enregistrement sera lié à l'individu"_s,
                                    u"Module"_s, {u"Images"_s, essais}, false},
                                   QList<int>{1});
    ASSERT_NE(editing.addLink(), 0);
    ASSERT_TRUE(project.save());
}

void StructureStory::enterRecords()
{
    project.db().Execute(u"INSERT INTO Individus (Numéro) VALUES (\"A1\")"_s);
    project.db().Execute(u"INSERT INTO Individus (Numéro) VALUES (\"A2\")"_s);
    const QStringList heights{u"1,5"_s, u"2"_s, u"environ 3"_s, u"0.25"_s};
    for (qsizetype at = 0; at < heights.size(); ++at)
        project.db().Execute(u"INSERT INTO Essais ([ID Individus], Code, Parcelle, Hauteur, [C Liste Simple], KeyParent) "
                             "VALUES (%1, \"c%2\", \"p%2\", \"%3\", \"sec\", \"%1-Individus\")"_s.arg(
                                 QString::number(1 + at % 2), QString::number(at), heights[at]));
    project.db().Execute(u"INSERT INTO Images ([ID Individus], Fichier, KeyParent) VALUES (1, \"a.jpg\", \"1-Essais\")"_s);
    project.db().Execute(u"UPDATE Individus SET [ID Essais]=2 WHERE [ID Individus]=2"_s);
    query(u"Hautes"_s, u"data\r\ncolonne\t=Hauteur\t\tHauteur\tEssais.Hauteur\r\ncolonne\t=Code\t\tID Essais\\>Code\t"
                       "Individus.ID Essais\tEssais.Code\r\ncolonne\t=Numéro\t\tNuméro\tIndividus.Numéro"_s);
    project.session.properties().put(data::kindModèle, essais, u"Sec"_s, u"0-Essais;Essais.C Liste Simple;sec"_s);
    project.editing->reload();
}

TEST_F(StructureStory, FromTheFirstFieldToTheDeletionOfTheModule)
{
    makeModule();
    expectSound();
    EXPECT_EQ(project.editing->draft().moduleNamed(essais)->fields.size(), 17);
    enterRecords();
    EXPECT_EQ(project.editing->example(*project.editing->draft().moduleNamed(essais)), u"c0 : 1,5 m"_s);
    // The rules hold from now on.
    for (const QString& refused :
         {u"INSERT INTO Essais ([ID Individus], Code) VALUES (1, \"C0\")"_s,
          u"INSERT INTO Essais ([ID Individus]) VALUES (1)"_s,
          u"INSERT INTO Essais ([ID Individus], Code, Parcelle) VALUES (1, \"x\", \"p0\")"_s,
          u"INSERT INTO Essais ([ID Individus], Code, Hauteur) VALUES (1, \"y\", \"haut\")"_s})
        EXPECT_THROW(project.db().Execute(refused), jet::Error) << refused.toStdString();

    // --- module and field renamed ---
    ASSERT_TRUE(project.editing->renameModule(project.module(essais), u"Mesures d'été"_s.replace(u'\'', u'_')));
    const QString name = u"Mesures d_été"_s;
    ASSERT_TRUE(project.editing->renameField(project.field(name, u"Hauteur"_s), u"Taille"_s));
    ASSERT_TRUE(project.save());
    expectSound();
    EXPECT_EQ(text(u"SELECT Taille, KeyParent FROM [Mesures d_été] ORDER BY [ID Mesures d_été]"_s),
              u"1,5|1-Individus / 2|2-Individus / environ 3|1-Individus / 0.25|2-Individus"_s);
    EXPECT_EQ(text(u"SELECT KeyParent FROM Images"_s), u"1-Mesures d_été"_s);
    EXPECT_EQ(text(u"SELECT [ID Mesures d_été] FROM Individus ORDER BY [ID Individus]"_s), u"∅ / 2"_s);
    EXPECT_EQ(query(u"Hautes"_s),
              u"data\r\ncolonne\t=Hauteur\t\tTaille\tMesures d_été.Taille\r\ncolonne\t=Code\t\tID Mesures d_été\\>Code\t"
              "Individus.ID Mesures d_été\tMesures d_été.Code\r\ncolonne\t=Numéro\t\tNuméro\tIndividus.Numéro"_s);
    EXPECT_EQ(project.session.properties().value(data::kindModèle, name, u"Sec"_s).toString(),
              u"0-Mesures d_été;Mesures d_été.C Liste Simple;sec"_s);
    EXPECT_EQ(project.session.properties().value(data::kindDescripteur, name, u"C Liste Simple"_s).toString(),
              u"sec;humide"_s);
    EXPECT_FALSE(project.db().schema().table(essais));
    EXPECT_TRUE(project.db().schema().relation(name));
    EXPECT_TRUE(app::buildModuleTree(project.session).find(name));
    EXPECT_EQ(project.editing->draft().moduleNamed(name)->record.shortLabel, u"[Code] : [Taille] m"_s);

    // --- a type changed, with a value that does not convert ---
    const int height = project.field(name, u"Taille"_s);
    ASSERT_TRUE(project.editing->setType(height, data::Réel));
    ASSERT_TRUE(project.editing->setRule(height, u">0"_s));
    const app::StructureReview review = project.review();
    ASSERT_EQ(review.findings.size(), 1);
    EXPECT_EQ(review.findings[0].kind, Finding::Unconverted);
    EXPECT_EQ(review.findings[0].count, 1);
    EXPECT_EQ(review.findings[0].examples[0].value, u"environ 3"_s);
    EXPECT_EQ(review.findings[0].examples[0].record, 3);
    EXPECT_TRUE(review.losesData());
    ASSERT_TRUE(project.save());
    EXPECT_TRUE(QFileInfo::exists(project.path(u"projet.structure.hbx.bak"_s)));
    expectSound();
    EXPECT_EQ(text(u"SELECT Taille FROM [Mesures d_été] ORDER BY [ID Mesures d_été]"_s), u"1.5 / 2 / ∅ / 0.25"_s);
    EXPECT_EQ(project.db().schema().table(name)->field(u"Taille")->Type, jet::DataType::Double);
    EXPECT_THROW(project.db().Execute(u"UPDATE [Mesures d_été] SET Taille=-1"_s), jet::Error);
    EXPECT_TRUE(project.db().schema().table(name)->index(u"Code"));

    // --- a field deleted that a stored query shows ---
    const QString fieldTitle = project.editing->caption() + u": Suppression d'un champ"_s;
    project.dialogues.expectConfirm(
        u"Vous allez supprimer le champ < Taille >\n"
        "Ce champ est actuellement fonctionnel, il peut contenir des données...\n"
        "La suppression de ce champ entraînera la perte irrémédiable des données associées\n"
        "Supprimer définitivement ce champ ?"_s,
        fieldTitle, true, BoxIcon::Warning, platform::Answer::No);
    ASSERT_TRUE(project.editing->deleteField(project.field(name, u"Taille"_s)));
    ASSERT_TRUE(project.save());
    expectSound();
    EXPECT_FALSE(project.db().schema().table(name)->field(u"Taille"));
    EXPECT_FALSE(query(u"Hautes"_s).contains(u"Taille"_s));
    EXPECT_TRUE(query(u"Hautes"_s).contains(u"Individus.Numéro"_s));
    EXPECT_EQ(project.session.properties().value(data::kindDescripteur, name, u"C Liste Simple"_s).toString(),
              u"sec;humide"_s);

    // --- the module deleted ---
    project.session.properties().put(data::kindDescripteur, data::moduleIndividus, u"Herbier"_s, u"P;K"_s);
    project.dialogues.expectConfirm(
        u"Vous allez supprimer le module < Mesures d_été >\n"
        "Ce module est actuellement fonctionnel, il contient 4 enregistrement(s)...\n"
        "La suppression de ce module entraînera la perte irrémédiable des données et des liens associés\n"
        "Etes-vous certain de vouloir supprimer ce module ?"_s,
        project.editing->caption() + u": Suppression d'un module"_s, true, BoxIcon::Warning, platform::Answer::No);
    ASSERT_TRUE(project.editing->deleteModule(project.module(name)));
    ASSERT_TRUE(project.save());
    expectSound();
    EXPECT_FALSE(project.db().schema().table(name));
    EXPECT_FALSE(project.db().schema().table(u"Individus"_s)->field(u"ID Mesures d_été"));
    EXPECT_EQ(text(u"SELECT KeyParent FROM Images"_s), u"∅"_s);
    EXPECT_EQ(query(u"Hautes"_s), u"data\r\ncolonne\t=Numéro\t\tNuméro\tIndividus.Numéro"_s);
    EXPECT_EQ(project.definitions(name), QStringList());
    EXPECT_EQ(text(u"SELECT Nom FROM Propriétés WHERE [Module]=\"Mesures d_été\""_s), QString());
    // The lists of other modules are still there.
    EXPECT_EQ(project.session.properties().value(data::kindDescripteur, data::moduleIndividus, u"Herbier"_s).toString(),
              u"P;K"_s);
}

} // namespace
