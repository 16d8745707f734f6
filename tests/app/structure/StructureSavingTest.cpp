#include "StructureFixture.h"

#include "jet/Recordset.h"
#include "support/Files.h"

#include <QDir>
#include <QFile>

namespace {

using namespace Qt::StringLiterals;
using app::Finding;
using support::StructureProject;

/// Stops when the step of that text begins.
class StoppingAt : public platform::Progression {
public:
    explicit StoppingAt(QString text) : m_text(std::move(text)) {}
    void step(const QString& text, int) override { m_stopped = m_stopped || text.startsWith(m_text); }
    bool cancelled() const override { return m_stopped; }

private:
    QString m_text;
    bool m_stopped = false;
};

class StructureSaving : public ::testing::Test {
protected:
    StructureSaving()
    {
        project.addModule(u"Mesures"_s);
        project.addField(u"Mesures"_s, u"Hauteur"_s, data::Texte);
        project.addField(u"Mesures"_s, u"Note"_s, data::Texte);
        EXPECT_TRUE(project.save());
        project.db().Execute(u"INSERT INTO Individus (Numéro) VALUES (\"1\")"_s);
        for (const QString& height : {u"1"_s, u"1"_s, u"x"_s, QString()})
            project.db().Execute(u"INSERT INTO Mesures ([ID Individus], Hauteur, KeyParent) VALUES (1, %1, \"1-Individus\")"_s
                                     .arg(height.isEmpty() ? u"Null"_s : u'"' + height + u'"'));
        project.editing->reload();
    }

    QStringList kinds(const app::StructureReview& review)
    {
        QStringList texts;
        for (const Finding& finding : review.findings) {
            QStringList records;
            for (const qint32 id : finding.records())
                records << QString::number(id);
            texts << u"%1:%2 (%3)"_s.arg(QString::number(finding.kind), QString::number(finding.count), records.join(u','));
        }
        return texts;
    }
    QStringList everything()
    {
        QStringList all = project.definitions();
        all += project.rows(u"SELECT * FROM Mesures"_s);
        all += project.rows(u"SELECT Objet, [Module], Nom, [Value] FROM Propriétés"_s);
        for (const jet::TableDef& table : project.db().schema().tables()) {
            for (const jet::Field& field : table.Fields)
                all << table.Name + u'.' + field.Name + QString::number(int(field.Type));
        }
        return all;
    }

    StructureProject project;
};

TEST_F(StructureSaving, SaysWhichRecordsBreakANewRule)
{
    app::StructureEditing& editing = *project.editing;
    const int height = project.field(u"Mesures"_s, u"Hauteur"_s);
    editing.setFieldFlag(height, data::Obligatoire, true);
    EXPECT_EQ(kinds(project.review()), (QStringList{u"%1:1 (4)"_s.arg(Finding::Missing)}));
    editing.draft().undo();
    editing.setFieldFlag(height, data::Unique, true);
    EXPECT_EQ(kinds(project.review()), (QStringList{u"%1:2 (1,2)"_s.arg(Finding::Repeated)}));
    editing.draft().undo();
    ASSERT_TRUE(editing.setRule(height, u"<>\"X\""_s)); // case does not count
    EXPECT_EQ(kinds(project.review()), (QStringList{u"%1:1 (3)"_s.arg(Finding::Refused)}));
    editing.draft().undo();
    editing.setModuleFlag(project.module(u"Mesures"_s), data::Unique, true);
    EXPECT_EQ(kinds(project.review()), (QStringList{u"%1:4 (1,2,3,4)"_s.arg(Finding::SeveralOfOne)}));
    editing.draft().undo();
    editing.setModuleFlag(project.module(u"Mesures"_s), data::MixteUnique, true);
    editing.setFieldFlag(height, data::MixteUnique, true);
    EXPECT_EQ(kinds(project.review()), (QStringList{u"%1:2 (1,2)"_s.arg(Finding::RepeatedKey)}));
    editing.draft().undo();
    editing.draft().undo();
    // What the converted values would break counts, not what they are now.
    editing.setFieldFlag(height, data::Unique, true);
    editing.setType(height, data::Entier);
    EXPECT_EQ(kinds(project.review()),
              (QStringList{u"%1:1 (3)"_s.arg(Finding::Unconverted), u"%1:1 (2)"_s.arg(Finding::Repeated)}));
    editing.draft().undo();
    editing.draft().undo();
    const int fresh = project.addField(u"Mesures"_s, u"Obligatoire"_s, data::Texte);
    editing.setFieldFlag(fresh, data::Obligatoire, true);
    EXPECT_EQ(kinds(project.review()), (QStringList{u"%1:4 ()"_s.arg(Finding::Missing)}));
}

TEST_F(StructureSaving, WhatNothingBreaksIsSavedAndHolds)
{
    app::StructureEditing& editing = *project.editing;
    project.db().Execute(u"UPDATE Mesures SET Hauteur=CStr([ID Mesures])"_s);
    const int height = project.field(u"Mesures"_s, u"Hauteur"_s);
    editing.setFieldFlag(height, data::Obligatoire, true);
    editing.setFieldFlag(height, data::Unique, true);
    ASSERT_TRUE(editing.setType(height, data::Entier));
    ASSERT_TRUE(editing.setRule(height, u"Between 1 And 9"_s));
    ASSERT_TRUE(editing.renameField(height, u"Rang"_s));
    ASSERT_TRUE(project.save());
    EXPECT_EQ(project.findings(), QStringList());
    EXPECT_EQ(project.rows(u"SELECT Rang FROM Mesures ORDER BY Rang"_s),
              (QStringList{u"1"_s, u"2"_s, u"3"_s, u"4"_s}));
    for (const QString& refused : {u"Null"_s, u"3"_s, u"10"_s})
        EXPECT_THROW(project.db().Execute(u"UPDATE Mesures SET Rang=%1 WHERE Rang=1"_s.arg(refused)), jet::Error)
            << refused.toStdString();
}

TEST_F(StructureSaving, NamesCanBeExchanged)
{
    app::StructureEditing& editing = *project.editing;
    project.db().Execute(u"UPDATE Mesures SET [Note]=\"n\" & CStr([ID Mesures])"_s);
    project.session.properties().put(data::kindRequête, u"Mesures"_s, u"q"_s,
                                     u"colonne\t=a\t\tHauteur\tMesures.Hauteur\r\ncolonne\t=b\t\tNote\tMesures.Note"_s);
    const int height = project.field(u"Mesures"_s, u"Hauteur"_s);
    const int note = project.field(u"Mesures"_s, u"Note"_s);
    ASSERT_TRUE(editing.renameField(height, u"x"_s));
    ASSERT_TRUE(editing.renameField(note, u"Hauteur"_s));
    ASSERT_TRUE(editing.renameField(height, u"Note"_s));
    ASSERT_TRUE(project.save());
    EXPECT_EQ(project.findings(), QStringList());
    EXPECT_EQ(project.rows(u"SELECT Hauteur, [Note] FROM Mesures WHERE [ID Mesures]=1"_s), (QStringList{u"n1|1"_s}));
    EXPECT_EQ(project.session.properties().value(data::kindRequête, u"Mesures"_s, u"q"_s).toString(),
              u"colonne\t=a\t\tNote\tMesures.Note\r\ncolonne\t=b\t\tHauteur\tMesures.Hauteur"_s);
}

TEST_F(StructureSaving, StatementsFollowTheNames)
{
    app::Renamings renamings;
    renamings.modules.insert(u"mesures"_s, u"Grandes mesures"_s);
    renamings.fields.insert({u"mesures"_s, u"id mesures"_s}, u"ID Grandes mesures"_s);
    renamings.fields.insert({u"mesures"_s, u"note"_s}, u"Remarque"_s);
    const QList<QPair<QString, QString>> cases{
        {u"SELECT Mesures.[Note] FROM Mesures WHERE [ID Mesures]>1"_s,
         u"SELECT [Grandes mesures].[Remarque] FROM [Grandes mesures] WHERE [ID Grandes mesures]>1"_s},
        {u"SELECT m.Note, \"Mesures\" FROM MESURES AS m"_s, u"SELECT m.[Remarque], \"Mesures\" FROM [Grandes mesures] AS m"_s},
        {u"SELECT Note FROM Individus"_s, u"SELECT Note FROM Individus"_s},
        {u"SELECT Individus.Note FROM Individus, Mesures"_s, u"SELECT Individus.Note FROM Individus, [Grandes mesures]"_s}};
    for (const auto& [before, after] : cases)
        EXPECT_EQ(app::renamedStatement(before, renamings), after);
    project.db().CreateQueryDef(u"Ancienne"_s, u"SELECT Hauteur FROM Mesures"_s);
    ASSERT_TRUE(project.editing->renameModule(project.module(u"Mesures"_s), u"Tailles"_s));
    ASSERT_TRUE(project.editing->renameField(project.field(u"Tailles"_s, u"Hauteur"_s), u"Longueur"_s));
    ASSERT_TRUE(project.save());
    EXPECT_EQ(project.rows(u"SELECT Longueur FROM Ancienne"_s).size(), 4);
}

TEST_F(StructureSaving, AConvertedTextFieldBecomesAVocabulary)
{
    project.editing->setType(project.field(u"Mesures"_s, u"Hauteur"_s), data::ListeSimple);
    ASSERT_TRUE(project.save());
    EXPECT_EQ(project.session.dictionary().module(u"Mesures")->field(u"Hauteur")->descriptors,
              (QStringList{u"1"_s, u"x"_s}));
}

TEST_F(StructureSaving, ALongModuleNameFindsRoomEverywhere)
{
    const QString name(40, u'm');
    ASSERT_TRUE(project.editing->renameModule(project.module(u"Mesures"_s), name));
    project.editing->setType(project.field(name, u"Note"_s), data::ListeSimple);
    project.editing->setDescriptors(project.field(name, u"Note"_s), {u"a"_s});
    ASSERT_TRUE(project.save());
    EXPECT_EQ(project.findings(), QStringList());
    EXPECT_EQ(project.session.properties().value(data::kindDescripteur, name, u"Note"_s).toString(), u"a"_s);
}

TEST_F(StructureSaving, StoppedAnywhereItLeavesTheProjectAsItWas)
{
    app::StructureEditing& editing = *project.editing;
    ASSERT_TRUE(editing.renameModule(project.module(u"Mesures"_s), u"Tailles"_s));
    editing.setType(project.field(u"Tailles"_s, u"Hauteur"_s), data::Réel);
    ASSERT_TRUE(editing.renameField(project.field(u"Tailles"_s, u"Note"_s), u"Remarque"_s));
    project.addModule(u"Sols"_s);
    const app::StructurePlan plan = editing.plan();
    const QStringList before = everything();
    for (const QString& step : {u"Suppression"_s, u"Changement"_s, u"Conversion des données"_s, u"Enregistrement"_s,
                                u"Mise à jour"_s}) {
        project.dialogues.expectLike({u"La structure n'a pas été enregistrée"_s, u"annulée par l'utilisateur"_s},
                                     u"Herbora"_s, platform::BoxIcon::Stop);
        StoppingAt stopping(step);
        EXPECT_FALSE(app::saveStructure(project.session, plan, false, stopping)) << step.toStdString();
        EXPECT_EQ(everything(), before) << step.toStdString();
        EXPECT_EQ(project.findings(), QStringList());
        EXPECT_TRUE(project.session.dictionary().module(u"Mesures")) << step.toStdString();
        EXPECT_TRUE(project.session.addins().item(u"Mesures")) << step.toStdString();
    }
    ASSERT_TRUE(app::saveStructure(project.session, plan, true, project.progression));
    EXPECT_TRUE(project.session.addins().item(u"Tailles"));
    EXPECT_FALSE(project.session.addins().item(u"Mesures"));
}

/// The copy is the project as it was, and a sound one.
TEST_F(StructureSaving, MakesACopyBeforeDataIsLost)
{
    project.editing->setType(project.field(u"Mesures"_s, u"Hauteur"_s), data::Réel);
    ASSERT_TRUE(project.save());
    const QString copy = project.path(u"copie.hbx"_s);
    ASSERT_TRUE(QFile::copy(project.path(u"projet.structure.hbx.bak"_s), copy));
    const auto database = jet::Database::Open(copy);
    EXPECT_EQ(database->Check(), QStringList());
    const auto rows = database->OpenRecordset(u"SELECT Hauteur FROM Mesures WHERE [ID Mesures]=3"_s);
    EXPECT_EQ(rows->Value(0).toString(), u"x"_s);
    EXPECT_EQ(QDir(project.folder.path()).entryList({u".*"_s}, QDir::Files | QDir::Hidden), QStringList());
}

TEST_F(StructureSaving, AStructureGoesToAnotherProjectAsItIs)
{
    app::StructureEditing& editing = *project.editing;
    const int list = project.addField(u"Mesures"_s, u"Aspect"_s, data::ListeMultiple);
    editing.setDescriptors(list, {u"lisse"_s, u"rugueux"_s});
    editing.setFieldFlag(list, data::Interface, true);
    const int own = project.addField(u"Individus"_s, u"Exposition"_s, data::Texte);
    ASSERT_TRUE(editing.setRule(own, u"Like \"[NSEO]*\""_s));
    editing.setRuleText(own, u"Un point cardinal"_s);
    editing.setModuleFlag(project.module(u"Mesures"_s), data::Unique, false);
    editing.setShortLabel(project.module(u"Mesures"_s), u"[Hauteur] m"_s);
    editing.setIcon(project.module(u"Mesures"_s), QByteArray("\x89PNG..."));
    editing.setModuleHelp(project.module(u"Images"_s), u"Photographies"_s);
    ASSERT_TRUE(editing.moveField(project.field(u"Images"_s, u"Légende"_s), -1));
    ASSERT_TRUE(project.save());
    const QString file = project.path(u"structure.hbx"_s);
    ASSERT_TRUE(editing.exportTo(file));

    StructureProject other;
    platform::Choice choice;
    choice.title = u"projet.hbx - < Structure >: Import de modules"_s;
    choice.prompt = u"Sélectionnez les modules à importer de « structure.hbx »"_s;
    choice.column = u"Module"_s;
    choice.several = true;
    choice.items = QStringList{u"Individus (à compléter)"_s, u"Images (à compléter)"_s, u"Mesures"_s};
    other.dialogues.expectChoice(choice, QList<int>{0, 1, 2});
    ASSERT_TRUE(other.editing->importFrom(file));
    ASSERT_TRUE(other.save());
    EXPECT_EQ(other.definitions(), project.definitions());
    EXPECT_EQ(other.rows(u"SELECT [Module], Nom, [Value] FROM Propriétés ORDER BY [Module], Nom"_s),
              project.rows(u"SELECT [Module], Nom, [Value] FROM Propriétés ORDER BY [Module], Nom"_s));
    EXPECT_EQ(other.session.dictionary().module(u"Mesures")->icon, QByteArray("\x89PNG..."));
    EXPECT_EQ(other.findings(), QStringList());
    // The file of the structure is a project itself.
    EXPECT_TRUE(other.session.open(file, other.progression));
    EXPECT_EQ(other.findings(), QStringList());
}

/// What was saved is what an opening wants to find.
TEST_F(StructureSaving, OpeningAfterwardsChangesNothing)
{
    app::StructureEditing& editing = *project.editing;
    const int list = project.addField(u"Mesures"_s, u"Aspect"_s, data::ListeSimple);
    editing.setDescriptors(list, {u"lisse"_s});
    editing.setFieldFlag(project.field(u"Mesures"_s, u"Note"_s), data::Unique, true);
    ASSERT_TRUE(editing.setType(project.field(u"Mesures"_s, u"Hauteur"_s), data::Réel));
    ASSERT_TRUE(editing.renameModule(project.module(u"Mesures"_s), u"Tailles"_s));
    ASSERT_TRUE(project.addModule(u"Sols"_s));
    ASSERT_TRUE(editing.moveModule(project.module(u"Sols"_s), -1));
    ASSERT_TRUE(project.save());
    project.session.close();
    const QByteArray before = support::bytesOf(project.path());
    ASSERT_TRUE(project.open());
    project.session.close();
    EXPECT_TRUE(support::bytesOf(project.path()) == before);
    ASSERT_TRUE(project.open());
    project.editing = std::make_unique<app::StructureEditing>(project.session);
}

TEST_F(StructureSaving, SynchronisesVocabulariesWithTheRecords)
{
    project.editing->setType(project.field(u"Mesures"_s, u"Hauteur"_s), data::ListeSimple);
    ASSERT_TRUE(project.save());
    project.session.properties().put(data::kindDescripteur, u"Mesures"_s, u"Hauteur"_s, u"jamais;x"_s);
    project.editing->reload();
    project.dialogues.expectConfirm(
        u"Synchroniser la liste des descripteurs à partir des données de la base de données ?\r\n"
        "Attention, les descripteurs non référencées seront supprimées définitivement...\r\n"
        "Voulez-vous procéder à la synchronisation ?"_s,
        u"projet.hbx - < Structure >"_s, true, platform::BoxIcon::Warning, platform::Answer::No);
    EXPECT_TRUE(project.editing->synchroniseDescriptors());
    EXPECT_EQ(project.session.properties().value(data::kindDescripteur, u"Mesures"_s, u"Hauteur"_s).toString(), u"x;1"_s);
    EXPECT_EQ(project.editing->draft().field(project.field(u"Mesures"_s, u"Hauteur"_s))->record.descriptors,
              (QStringList{u"x"_s, u"1"_s}));
    EXPECT_FALSE(project.editing->draft().isChanged());
}

} // namespace
