// The structure editor as a user works with it, in the real program.
#include "app/ui/WindowFixture.h"

#include "app/structure/StructureSaving.h"
#include "app/ui/StructureDesk.h"
#include "app/ui/structure/DescriptorWindow.h"
#include "app/ui/structure/PropertySheet.h"
#include "app/ui/structure/ReviewDialog.h"
#include "app/ui/structure/StructureModel.h"
#include "app/ui/structure/StructureWindow.h"
#include "app/ui/structure/TrialWindow.h"
#include "data/FieldType.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileInfo>
#include <QInputMethodEvent>
#include <QLineEdit>

namespace {

using namespace Qt::StringLiterals;
using app::StructureModel;

class StructureWindowTest : public support::WindowTest {
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        makeProject();
        openProject();
        trigger(u"modif"_s);
        for (const auto& one : window().desks()) {
            if (auto* found = qobject_cast<app::StructureDesk*>(one.get()))
                desk = found;
        }
        ASSERT_TRUE(desk && desk->window());
    }

    app::StructureWindow& structure() { return *desk->window(); }
    app::StructureDraft& draft() { return structure().editing().draft(); }
    int module(const QString& name) { return draft().moduleNamed(name)->id; }
    int field(const QString& name, const QString& caption)
    {
        const app::DraftField* one = draft().moduleNamed(name)->fieldNamed(caption);
        return one ? one->id : 0;
    }
    template<typename Widget> Widget* part(const QString& sheet, const QString& name)
    {
        auto* owner = structure().findChild<QWidget*>(sheet);
        auto* found = owner ? owner->findChild<Widget*>(name) : nullptr;
        EXPECT_TRUE(found) << name.toStdString();
        return found;
    }
    void type(const QString& sheet, const QString& name, const QString& text)
    {
        auto* line = part<QLineEdit>(sheet, name);
        line->setFocus();
        line->selectAll();
        QInputMethodEvent typed; // keyClicks knows no accents
        typed.setCommitString(text);
        QCoreApplication::sendEvent(line, &typed);
        QTest::keyClick(line, Qt::Key_Return);
        settleParts();
    }
    /// What was put off to the next turn is done.
    void settleParts()
    {
        for (int turn = 0; turn < 5; ++turn)
            QCoreApplication::processEvents();
    }
    void run(const QString& command)
    {
        settleParts();
        ASSERT_TRUE(structure().command(command)->isEnabled()) << command.toStdString();
        structure().command(command)->trigger();
        settleParts();
    }
    void save()
    {
        run(u"save"_s);
        settleParts();
        settle();
        settleParts();
    }
    QStringList texts(const QModelIndex& parent)
    {
        const auto& model = static_cast<StructureModel&>(*structure().tree().model());
        QStringList lines;
        for (int row = 0; row < model.rowCount(parent); ++row)
            lines << model.index(row, 0, parent).data().toString();
        return lines;
    }

    app::StructureDesk* desk = nullptr;
};

TEST_F(StructureWindowTest, ShowsModulesFieldsAndHowManyTheyAre)
{
    EXPECT_EQ(structure().windowTitle(), u"projet.hbx - < Structure >[*]"_s);
    EXPECT_EQ(texts({}), (QStringList{u"Individus <Lecture seule >"_s, u"Déterminations <Lecture seule >"_s, u"Images"_s,
                                      u"3 module(s) définis"_s}));
    const auto& model = static_cast<StructureModel&>(*structure().tree().model());
    const QModelIndex images = model.indexOf(module(u"Images"_s));
    EXPECT_EQ(texts(images), (QStringList{u"Nom"_s, u"Fichier"_s, u"Légende"_s, u"Auteur"_s, u"Date de prise de vue"_s,
                                          u"Taille du pixel"_s, u"5 champ(s) définis"_s}));
    QStringList header, titles;
    for (int column = 0; column < model.columnCount(); ++column) {
        header << model.headerData(column, Qt::Horizontal).toString();
        titles << model.index(0, column, images).data().toString();
    }
    EXPECT_EQ(header.mid(0, 5), (QStringList{u"Module"_s, u"Statut"_s, u"Nom DLL"_s, u"Version"_s, u"Enregistrements"_s}));
    EXPECT_EQ(titles, (QStringList{u"Nom"_s, u"Type"_s, u"Nulle Interdit"_s, u"Valeur Unique"_s, u"Combinaison Unique"_s,
                                   u"Lien Interface"_s, u"Description"_s, u"Elément"_s, u"Exemple abrégé"_s}));
    const QModelIndex determinations = model.indexOf(module(u"Déterminations"_s));
    EXPECT_EQ(determinations.siblingAtColumn(4).data().toString(), u"4"_s);
}

TEST_F(StructureWindowTest, AFieldIsMadeInItsSheetAndSaved)
{
    structure().choose(module(u"Images"_s));
    run(u"addField"_s);
    EXPECT_EQ(part<QLabel>(u"feuilleChamp"_s, u"titre"_s)->text(), u"Propriétés du Champ <Nouveau champ>"_s);
    type(u"feuilleChamp"_s, u"Caption"_s, u"Focale"_s);
    auto* types = part<QComboBox>(u"feuilleChamp"_s, u"ctype"_s);
    types->setCurrentIndex(types->findText(u"Nombre Entier"_s));
    Q_EMIT types->activated(types->currentIndex());
    settleParts();
    type(u"feuilleChamp"_s, u"ValidationRule"_s, u">0"_s);
    type(u"feuilleChamp"_s, u"ValidationTexte"_s, u"En millimètres"_s);
    part<QCheckBox>(u"feuilleChamp"_s, u"Interface"_s)->click();
    settleParts();
    EXPECT_TRUE(structure().isWindowModified());
    const int id = field(u"Images"_s, u"Focale"_s);
    ASSERT_NE(id, 0);
    EXPECT_EQ(draft().field(id)->record.rule, u">0"_s);
    EXPECT_EQ(draft().undoName(), u"Lien interface"_s);
    save();
    EXPECT_FALSE(structure().isWindowModified());
    const jet::Field* column = program->session().database().schema().table(u"Images")->field(u"Focale");
    ASSERT_TRUE(column);
    EXPECT_EQ(column->Type, jet::DataType::Long);
    EXPECT_EQ(column->ValidationText, u"En millimètres"_s);
}

TEST_F(StructureWindowTest, TheHelpFollowsTheFocus)
{
    structure().choose(field(u"Images"_s, u"Légende"_s));
    structure().activateWindow();
    part<QLineEdit>(u"feuilleChamp"_s, u"ValidationRule"_s)->setFocus();
    settleParts();
    EXPECT_EQ(part<QLabel>(u"feuilleChamp"_s, u"aide"_s)->text(),
              u"Indiquer une règle unique pour valider le champ (ex: >0 ou <>"_s);
}

TEST_F(StructureWindowTest, ARefusedNameComesBack)
{
    structure().choose(field(u"Images"_s, u"Légende"_s));
    dialogues.expectTell(u"Erreur: le nom de champ Fichier est invalide ou déja défini dans le tableau Images\r"
                         "Modifier le nom afin qu'il soit unique"_s,
                         u"projet.hbx - < Structure >"_s, platform::BoxIcon::Stop);
    type(u"feuilleChamp"_s, u"Caption"_s, u"Fichier"_s);
    EXPECT_EQ(part<QLineEdit>(u"feuilleChamp"_s, u"Caption"_s)->text(), u"Légende"_s);
    EXPECT_FALSE(draft().isChanged());
}

TEST_F(StructureWindowTest, MarksAreSetInTheTreeAndTakenBack)
{
    auto& model = static_cast<StructureModel&>(*structure().tree().model());
    const int id = field(u"Images"_s, u"Légende"_s);
    const auto cell = [&] { return model.indexOf(id).siblingAtColumn(StructureModel::Unique); };
    EXPECT_TRUE(model.setData(cell(), Qt::Checked, Qt::CheckStateRole));
    settleParts();
    EXPECT_EQ(cell().data(Qt::CheckStateRole).toInt(), Qt::Checked);
    run(u"undo"_s);
    EXPECT_EQ(cell().data(Qt::CheckStateRole).toInt(), Qt::Unchecked);
    run(u"redo"_s);
    EXPECT_TRUE(draft().field(id)->record.unique());
    // What belongs to the program cannot be marked.
    const QModelIndex own = model.indexOf(field(u"Individus"_s, u"Altitude"_s)).siblingAtColumn(StructureModel::Unique);
    EXPECT_FALSE(model.setData(own, Qt::Checked, Qt::CheckStateRole));
    run(u"undo"_s);
}

TEST_F(StructureWindowTest, ShowsWhatSavingDoesAndAsks)
{
    program->session().database().Execute(
        u"INSERT INTO Images ([ID Individus], Fichier, Légende) VALUES (1, \"a.jpg\", \"vue générale\")"_s);
    structure().editing().reload();
    structure().editing().setType(field(u"Images"_s, u"Légende"_s), data::Réel);
    settleParts();
    QTimer look;
    bool seen = false;
    QObject::connect(&look, &QTimer::timeout, [&] {
        auto* dialog = structure().findChild<app::ReviewDialog*>();
        if (!dialog || seen)
            return;
        seen = true;
        auto* list = dialog->findChild<QTreeWidget*>(u"constats"_s);
        EXPECT_EQ(list->topLevelItem(0)->text(0),
                  u"« Images », champ « Légende » : 1 valeur ne se convertit pas de Texte court en Nombre Réel et sera effacée"_s);
        EXPECT_EQ(list->topLevelItem(0)->child(0)->text(1), u"vue générale"_s);
        dialog->findChild<QPushButton*>(u"enregistrer"_s)->click();
    });
    look.start(10);
    run(u"save"_s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return seen && !draft().isChanged(); }, 20000));
    settle();
    EXPECT_TRUE(QFileInfo::exists(app::structureBackupPath(path())));
    EXPECT_EQ(program->session().database().schema().table(u"Images")->field(u"Légende")->Type, jet::DataType::Double);
}

TEST_F(StructureWindowTest, WhatRecordsBreakIsNotSaved)
{
    structure().choose(module(u"Déterminations"_s));
    run(u"addField"_s);
    part<QCheckBox>(u"feuilleChamp"_s, u"AllowNull"_s)->click();
    settleParts();
    bool asked = false;
    desk->ask = [&](const app::StructureReview& review, const std::function<void(bool)>& answered) {
        asked = true;
        EXPECT_TRUE(review.forbids());
        EXPECT_EQ(review.findings[0].count, 4);
        answered(false);
    };
    save();
    EXPECT_TRUE(asked);
    EXPECT_TRUE(draft().isChanged());
    // A window that forbids has nothing to agree to.
    app::ReviewDialog dialog(structure().editing().draft().isChanged()
                                 ? app::reviewOf(program->session().database(), structure().editing().plan(),
                                                 *std::make_unique<platform::NoProgression>())
                                 : app::StructureReview(),
                             u"x"_s, u"y"_s);
    EXPECT_FALSE(dialog.findChild<QPushButton*>(u"enregistrer"_s));
    draft().undo();
    draft().undo();
}

TEST_F(StructureWindowTest, TheTrialFollowsTheStructure)
{
    structure().choose(module(u"Images"_s));
    EXPECT_EQ(structure().command(u"wizard"_s)->text().remove(u'&'), u"Saisie Images"_s);
    run(u"wizard"_s);
    app::TrialWindow* trial = structure().trial();
    ASSERT_TRUE(trial);
    EXPECT_EQ(trial->windowTitle(), u"Saisie Images"_s);
    editing::Cl_Edition* legend = trial->form().Item(u"Légende"_s);
    trial->pane().world().take(*legend, u"vue"_s);
    const int id = field(u"Images"_s, u"Légende"_s);
    structure().editing().setRule(id, u"Like \"plan*\""_s);
    structure().editing().setRuleText(id, u"Commencez par « plan »"_s);
    structure().editing().addField(module(u"Images"_s));
    settleParts();
    legend = trial->form().Item(u"Légende"_s);
    ASSERT_TRUE(legend);
    EXPECT_EQ(legend->value().toString(), u"vue"_s);
    EXPECT_EQ(legend->TextError(), u"Commencez par « plan »"_s);
    EXPECT_TRUE(trial->form().Item(u"Nouveau champ"_s));
    while (draft().canUndo())
        draft().undo();
}

TEST_F(StructureWindowTest, TheVocabularyOfANewFieldWaitsForTheStructure)
{
    const int id = structure().editing().addField(module(u"Images"_s));
    structure().editing().renameField(id, u"Vue"_s);
    structure().editing().setType(id, data::ListeSimple);
    structure().choose(id);
    part<QPushButton>(u"feuilleChamp"_s, u"Descripteurs"_s)->click();
    settleParts();
    app::DescriptorWindow* list = structure().descriptors();
    ASSERT_TRUE(list);
    EXPECT_FALSE(list->isStored());
    for (const QString& text : {u"fleur"_s, u"fruit"_s}) {
        dialogues.expectInput(u"Ajout d'un descripteur"_s, u"Nouveau descripteur pour le champ \"Vue\" ?"_s, {}, text);
        list->panel().command(u"add"_s)->trigger();
    }
    list->panel().command(u"up"_s)->trigger();
    list->reject();
    settleParts();
    EXPECT_EQ(draft().field(id)->record.descriptors, (QStringList{u"fruit"_s, u"fleur"_s}));
    EXPECT_EQ(part<QPushButton>(u"feuilleChamp"_s, u"Descripteurs"_s)->text(), u"2 descripteur(s)"_s);
    EXPECT_TRUE(program->session().properties().value(data::kindDescripteur, u"Images"_s, u"Vue"_s).isNull());
    save();
    EXPECT_EQ(program->session().properties().value(data::kindDescripteur, u"Images"_s, u"Vue"_s).toString(),
              u"fruit;fleur"_s);
    structure().choose(field(u"Images"_s, u"Vue"_s));
    part<QPushButton>(u"feuilleChamp"_s, u"Descripteurs"_s)->click();
    settleParts();
    ASSERT_TRUE(structure().descriptors());
    EXPECT_TRUE(structure().descriptors()->isStored());
    structure().descriptors()->reject();
}

TEST_F(StructureWindowTest, AsksBeforeItClosesWithUnsavedChanges)
{
    structure().editing().addField(module(u"Images"_s));
    const platform::Message question{u"Voulez-vous enregistrer les modifications apportées à la structure de la base ?"_s,
                                     u"projet.hbx - < Structure >"_s, platform::BoxIcon::Question,
                                     platform::BoxButtons::YesNoCancel, platform::Answer::Yes};
    dialogues.expect(question, platform::Answer::Cancel);
    structure().close();
    settleParts();
    ASSERT_TRUE(desk->window() && structure().isVisible());
    dialogues.expect(question, platform::Answer::Yes);
    structure().close();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !desk->window(); }, 20000));
    settle();
    EXPECT_TRUE(program->session().database().schema().table(u"Images")->field(u"Nouveau champ"));
    trigger(u"modif"_s); // it opens again
    ASSERT_TRUE(desk->window());
    structure().editing().addField(module(u"Images"_s));
    dialogues.expect(question, platform::Answer::No);
    structure().close();
    settleParts();
    EXPECT_FALSE(desk->window());
}

TEST_F(StructureWindowTest, TabsAndTreeFollowTheSavedStructure)
{
    openRecords(u"Images"_s);
    structure().editing().renameModule(module(u"Images"_s), u"Photos"_s);
    save();
    EXPECT_TRUE(window().dock().model().indexOf(u"Photos"_s).isValid());
    EXPECT_FALSE(window().dock().model().indexOf(u"Images"_s).isValid());
    app::GridTab* grid = openRecords(u"Photos"_s);
    ASSERT_TRUE(grid);
    EXPECT_GE(columnOf(*grid, u"Légende"_s), 0);
}

TEST_F(StructureWindowTest, EveryCommandHasANameAndATipAndEveryControlToo)
{
    for (const QAction* action : structure().findChildren<QAction*>()) {
        const bool named = !action->objectName().isEmpty() || action->menu();
        EXPECT_TRUE(named || action->isSeparator() || action->text().isEmpty()) << action->text().toStdString();
    }
    for (const QString& sheet : {u"feuilleModule"_s, u"feuilleChamp"_s}) {
        for (const QLineEdit* line : structure().findChild<QWidget*>(sheet)->findChildren<QLineEdit*>())
            EXPECT_FALSE(line->accessibleName().isEmpty()) << line->objectName().toStdString();
    }
}

} // namespace
