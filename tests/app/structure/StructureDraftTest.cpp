#include "StructureFixture.h"

#include "app/structure/ShortLabel.h"
#include "app/structure/TrialRecords.h"

namespace {

using namespace Qt::StringLiterals;
using support::StructureProject;

TEST(StructureDraft, UndoesAndRedoesStepByStep)
{
    StructureProject project;
    app::StructureEditing& editing = *project.editing;
    const app::DraftModules before = editing.draft().modules();
    ASSERT_NE(project.addModule(u"Germination"_s), 0);
    const int id = project.addField(u"Germination"_s, u"Jour"_s, data::Entier);
    editing.setFieldFlag(id, data::Obligatoire, true);
    const app::DraftModules after = editing.draft().modules();
    EXPECT_EQ(editing.draft().undoName(), u"Valeur nulle interdite"_s);
    int steps = 0;
    for (; editing.draft().canUndo(); ++steps)
        editing.draft().undo();
    EXPECT_EQ(steps, 5);
    EXPECT_EQ(editing.draft().modules(), before);
    EXPECT_FALSE(editing.draft().isChanged());
    while (editing.draft().canRedo())
        editing.draft().redo();
    EXPECT_EQ(editing.draft().modules(), after);
    // The same value again is no step.
    editing.setFieldFlag(id, data::Obligatoire, true);
    EXPECT_EQ(editing.draft().modules(), after);
    editing.draft().undo();
    editing.setFieldHelp(id, u"Depuis le semis"_s);
    EXPECT_FALSE(editing.draft().canRedo());
}

TEST(StructureDraft, WhatTheProgramBringsAlongStays)
{
    StructureProject project;
    app::StructureEditing& editing = *project.editing;
    for (const QString& name : {u"Individus"_s, u"Déterminations"_s}) {
        const app::DraftModule& module = *editing.draft().moduleNamed(name);
        EXPECT_FALSE(editing.mayDelete(module));
        EXPECT_EQ(editing.moduleText(module), name + u" <Lecture seule >"_s);
        for (const app::DraftField& field : module.fields) {
            EXPECT_TRUE(editing.isReadOnly(module, field)) << field.record.caption.toStdString();
            EXPECT_FALSE(editing.deleteField(field.id));
            EXPECT_FALSE(editing.setType(field.id, data::Texte));
            EXPECT_FALSE(editing.renameField(field.id, u"Autre"_s));
        }
    }
    EXPECT_FALSE(editing.draft().isChanged());
    const int own = project.addField(u"Individus"_s, u"Exposition"_s, data::ListeSimple);
    EXPECT_FALSE(editing.isReadOnly(*editing.draft().moduleNamed(u"Individus"_s), *editing.draft().field(own)));
    ASSERT_TRUE(project.save());
    EXPECT_TRUE(project.db().schema().table(u"Individus")->field(u"Exposition"));
    EXPECT_EQ(project.findings(), QStringList());
}

TEST(StructureDraft, FieldsMoveAndKeepTheirPlaceInTheProject)
{
    StructureProject project;
    app::StructureEditing& editing = *project.editing;
    const int date = project.field(u"Images"_s, u"Date de prise de vue"_s);
    EXPECT_TRUE(editing.moveField(date, -1));
    EXPECT_TRUE(editing.moveField(date, -1));
    EXPECT_TRUE(editing.moveField(date, -1));
    EXPECT_FALSE(editing.moveField(date, -1));
    ASSERT_TRUE(project.save());
    EXPECT_EQ(project.rows(u"SELECT [Table] FROM PGTableDefs WHERE NomModule=\"Images\" AND [Type]=\"TabEdit\" "
                           "ORDER BY [Index], NomObjet"_s),
              (QStringList{u"DatePrise"_s, u"Fichier"_s, u"Légende"_s, u"ID Collecteurs"_s, u"TaillePixel"_s}));
    EXPECT_EQ(project.session.dictionary().module(u"Images")->fields.first().column, u"DatePrise"_s);
}

TEST(StructureDraft, AsksOnlyOfWhatIsThere)
{
    StructureProject project;
    ASSERT_NE(project.addModule(u"Sols"_s), 0);
    const int id = project.addField(u"Sols"_s, u"pH"_s, data::Réel);
    project.dialogues.expectConfirm(u"Vous allez supprimer le champ < pH >\n"
                                    "Ce champ ne contient aucune donnée, sa suppression est sans risque...\n"
                                    "Supprimer définitivement ce champ ?"_s,
                                    u"projet.hbx - < Structure >: Suppression d'un champ"_s, false,
                                    platform::BoxIcon::Warning, platform::Answer::No);
    EXPECT_FALSE(project.editing->deleteField(id));
    project.dialogues.expectConfirm(u"Vous allez supprimer le module < Sols >\n"
                                    "Ce module n'est actuellement pas fonctionnel et ne contient aucune donnée...\n"
                                    "Etes-vous certain de vouloir supprimer ce module ?"_s,
                                    u"projet.hbx - < Structure >: Suppression d'un module"_s, true,
                                    platform::BoxIcon::Warning, platform::Answer::No);
    EXPECT_TRUE(project.editing->deleteModule(project.module(u"Sols"_s)));
    EXPECT_FALSE(project.editing->draft().isChanged());
}

TEST(StructureDraft, RefusesARuleThatIsNotUnderstood)
{
    StructureProject project;
    const int id = project.field(u"Images"_s, u"Taille du pixel"_s);
    project.dialogues.expectLike({u"TaillePixel"_s, u">>"_s}, u"projet.hbx - < Structure >"_s,
                                 platform::BoxIcon::Stop);
    EXPECT_FALSE(project.editing->setRule(id, u">> 3"_s));
    EXPECT_TRUE(project.editing->setRule(id, u">0"_s));
}

TEST(StructureDraft, LinkedFieldsAreAskedForTogether)
{
    StructureProject project;
    project.editing->setFieldFlag(project.field(u"Images"_s, u"Légende"_s), data::Interface, true);
    QStringList groups;
    for (const auto& group : app::inputGroups(*project.editing->draft().moduleNamed(u"Images"_s))) {
        QStringList names;
        for (const app::DraftField& field : group)
            names << field.record.column;
        groups << names.join(u'+');
    }
    EXPECT_EQ(groups, (QStringList{u"Fichier+Légende"_s, u"ID Collecteurs"_s, u"DatePrise"_s, u"TaillePixel"_s}));
}

TEST(ShortLabel, PutsValuesInThePlaceOfNames)
{
    const app::ExampleValues values{{u"numéro"_s, u"A[1]"_s}, {u"taxon"_s, QString()}};
    EXPECT_EQ(app::filledLabel(u"N° [Numéro], [ Taxon ] ([Autre]) [fin"_s, values), u"N° A[1],  ([Autre]) [fin"_s);
    EXPECT_EQ(app::renamedInLabel(u"[Numéro]-[Numéros]"_s, u"NUMÉRO"_s, u"Code"_s), u"[Code]-[Numéros]"_s);
}

} // namespace
