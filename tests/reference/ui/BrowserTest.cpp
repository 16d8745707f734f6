// The three browsers: forms, counts, links, groups.
#include "BrowserFixture.h"

#include "editing/ui/FormDialog.h"
#include "reference/ui/Form10.h"
#include "reference/ui/LinksMenu.h"
#include "reference/ui/PlaceBrowser.h"
#include "reference/ui/TaxonBrowser.h"

namespace {

using namespace Qt::StringLiterals;
using platform::Answer;
using platform::BoxIcon;
using platform::TabCommand;
using reference::ReferenceBrowser;

class ThreeBrowsers : public BrowserTest {
protected:
    static QLineEdit* line(ReferenceBrowser& browser, const QString& column)
    {
        auto* found = browser.findChild<QLineEdit*>(u"editeur-"_s + column);
        EXPECT_TRUE(found) << column.toStdString();
        return found;
    }
    static void type(ReferenceBrowser& browser, const QString& column, const QString& text)
    {
        QLineEdit* editor = line(browser, column);
        editor->setFocus();
        editor->selectAll();
        for (const QChar c : text) { // the test library's own clicks know plain letters only
            QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(c));
            QCoreApplication::sendEvent(editor, &press);
        }
    }
    static QString label(ReferenceBrowser& browser, const QString& name)
    {
        return browser.findChild<QLabel*>(name)->text();
    }
    static QString count(ReferenceBrowser& browser)
    {
        EXPECT_TRUE(QTest::qWaitFor([&] { return browser.isSettled(); }, 5000));
        return label(browser, u"nombreIndividus"_s);
    }
    void expectLeaving(const QString& title, Answer answer)
    {
        project.dialogues.expect({u"Enregistrer les modifications de \""_s + title + u"\" ?"_s,
                                  u"Modifications non enregistrées"_s, BoxIcon::Question, platform::BoxButtons::YesNoCancel,
                                  Answer::Yes},
                                 answer);
    }
    static QStringList rows(reference::Form10& browser)
    {
        return children(browser.people().model());
    }
    static void group(reference::Form10& browser, const QString& key)
    {
        const QModelIndex index = browser.groupOf(key);
        EXPECT_TRUE(index.isValid()) << key.toStdString();
        browser.groups().setCurrentIndex(index);
    }
};

TEST_F(ThreeBrowsers, ATaxonIsEditedBesideItsTree)
{
    auto& browser = open(new reference::TaxonBrowser(world));
    EXPECT_TRUE(browser.showRow(2));
    EXPECT_EQ(label(browser, u"titreFiche"_s), u"Quercus (Genre)"_s);
    EXPECT_EQ(count(browser), u"1 individu, dont 0 directement"_s);
    browser.findChild<QPushButton*>(u"montrerIndividus"_s)->click();
    EXPECT_EQ(shown, QStringList{u"Quercus: 1"_s});
    QTest::keyClick(&browser.control().view(), Qt::Key_F2);
    type(browser, u"Nom Complet"_s, u"chênus"_s);
    EXPECT_EQ(browser.title(), u"Taxons *"_s);
    EXPECT_TRUE(browser.can(TabCommand::Save));
    browser.run(TabCommand::Save);
    EXPECT_FALSE(browser.can(TabCommand::Save));
    EXPECT_EQ(label(browser, u"titreFiche"_s), u"Chênus (Genre)"_s);
    EXPECT_EQ(line(browser, u"Nom Complet"_s)->text(), u"Chênus"_s);
    EXPECT_EQ(browser.control().view().currentIndex().data().toString(), u"Chênus"_s);
    EXPECT_EQ(world->taxa.NomTaxon(4, 0), u"Chênus robur var. alba"_s);
    EXPECT_EQ(written, QStringList{u"Taxons"_s});
    picture(browser, u"taxons"_s);
}

TEST_F(ThreeBrowsers, WhatIsTypedIsAskedAboutBeforeAnotherRowIsShown)
{
    auto& browser = open(new reference::TaxonBrowser(world));
    browser.showRow(3);
    type(browser, u"Auteurs"_s, u"Perdu"_s);
    expectLeaving(u"Quercus robur (Espèce)"_s, Answer::Cancel);
    EXPECT_FALSE(browser.showRow(5));
    EXPECT_EQ(browser.control().currentId(), 3);
    EXPECT_EQ(line(browser, u"Auteurs"_s)->text(), u"Perdu"_s);
    expectLeaving(u"Quercus robur (Espèce)"_s, Answer::No);
    EXPECT_TRUE(browser.showRow(5));
    EXPECT_EQ(line(browser, u"Auteurs"_s)->text(), u"Liebl."_s);
    EXPECT_EQ(world->taxa.Auteurs(3), u"L."_s);
    type(browser, u"Auteurs"_s, u"Gardé"_s);
    expectLeaving(u"Quercus petraea (Espèce)"_s, Answer::Yes);
    EXPECT_TRUE(browser.mayClose());
    EXPECT_EQ(world->taxa.Auteurs(5), u"Gardé"_s);
    type(browser, u"Auteurs"_s, u"Repris"_s);
    browser.findChild<QPushButton*>(u"retablir"_s)->click();
    EXPECT_EQ(line(browser, u"Auteurs"_s)->text(), u"Gardé"_s);
    EXPECT_TRUE(browser.mayClose());
}

TEST_F(ThreeBrowsers, TheSynonymsOfATaxonStandUnderItsForm)
{
    project.db().Execute(u"UPDATE Taxons SET [ID Valid]=3, AuteurSynonymie=\"Dupont\", DateSynonymie=\"1999\" WHERE [ID Taxons]=5"_s);
    auto& browser = open(new reference::TaxonBrowser(world));
    browser.showRow(3);
    ASSERT_EQ(browser.synonyms().topLevelItemCount(), 1);
    QTreeWidgetItem* item = browser.synonyms().topLevelItem(0);
    EXPECT_EQ(item->text(0) + u'|' + item->text(1) + u'|' + item->text(2), u"Quercus petraea Liebl.|1999|Dupont"_s);
    EXPECT_FALSE(browser.findChild<QLineEdit*>(u"editeur-ID Valid"_s)) << "an accepted name has no accepted name";
    picture(browser, u"synonymes"_s);
    browser.synonyms().setCurrentItem(item);
    project.dialogues.expectConfirm(u"Etes-vous sûr de vouloir supprimer cette synonymie ?"_s,
                                    u"Suppression d'une synonymie"_s, true);
    browser.findChild<QToolButton*>(u"clSynonyme_Delete"_s)->click();
    EXPECT_EQ(browser.synonyms().topLevelItemCount(), 0);
    EXPECT_EQ(world->taxa.IDValid(5, false), -1);
}

TEST_F(ThreeBrowsers, ADuplicateIsRefusedWithItsMessageAndStaysTyped)
{
    auto& browser = open(new reference::TaxonBrowser(world));
    browser.showRow(5);
    type(browser, u"Nom Complet"_s, u"robur"_s);
    type(browser, u"Auteurs"_s, u"L."_s);
    project.dialogues.expectTell(u"Impossible de valider ce nom de taxon\r\n\"Quercus robur L.\" existe déjà"_s,
                                 u"Violation des règles de taxonomie"_s, BoxIcon::Stop);
    browser.run(TabCommand::Save);
    EXPECT_TRUE(browser.can(TabCommand::Save));
    EXPECT_EQ(line(browser, u"Nom Complet"_s)->text(), u"robur"_s);
    expectLeaving(u"Quercus petraea (Espèce)"_s, Answer::No);
    EXPECT_TRUE(browser.mayClose());
}

TEST_F(ThreeBrowsers, APlaceIsEditedBesideItsTree)
{
    auto& browser = open(new reference::PlaceBrowser(world));
    EXPECT_TRUE(browser.showRow(1));
    EXPECT_EQ(count(browser), u"1 individu, dont 0 directement"_s);
    type(browser, u"Localité"_s, u"République gabonaise"_s);
    type(browser, u"LongDD"_s, u"E012°30'00.000"_s);
    browser.run(TabCommand::Save);
    EXPECT_EQ(project.rows(u"SELECT LongDD,[Nom Entier] FROM [Localités] WHERE [ID Localités] IN (1,2) ORDER BY [ID Localités]"_s),
              (QStringList{u"12.5|République gabonaise"_s, u"11.5|République gabonaise - Makokou"_s}));
    EXPECT_TRUE(browser.showRow(4));
    EXPECT_EQ(count(browser), u"1 individu"_s);
    EXPECT_TRUE(browser.showRow(3));
    EXPECT_EQ(count(browser), u"Aucun individu ne s'y rapporte"_s);
    EXPECT_FALSE(browser.findChild<QPushButton*>(u"montrerIndividus"_s)->isEnabled());
    picture(browser, u"localites"_s);
}

TEST_F(ThreeBrowsers, CollectorsStandByLettersAndOrganisations)
{
    auto& browser = open(new reference::Form10(world));
    EXPECT_EQ(rows(browser), (QStringList{u"Aubréville"_s, u"Uma"_s, u"Zoé"_s}));
    EXPECT_EQ(browser.statusText(), u"Sel. 0   3 botaniste(s)"_s);
    const QModelIndex all = browser.groupOf(u"0-Col"_s);
    EXPECT_EQ(browser.groups().model()->rowCount(all), 22) << "A to T, [U-V], [W-Z]";
    const QList<QPair<QString, QStringList>> cases{{u"A-Col"_s, {u"Aubréville"_s}}, {u"U-Col"_s, {u"Uma"_s}},
                                                   {u"W-Col"_s, {u"Zoé"_s}},        {u"B-Col"_s, {}},
                                                   {u"0-Org"_s, {u"Uma"_s}},        {u"CTFT-Org"_s, {u"Aubréville"_s}},
                                                   {u"0-Col"_s, {u"Aubréville"_s, u"Uma"_s, u"Zoé"_s}}};
    for (const auto& [key, names] : cases) {
        group(browser, key);
        EXPECT_EQ(rows(browser), names) << key.toStdString();
    }
    EXPECT_EQ(browser.groupOf(u"W-Col"_s).data().toString(), u"[W-Z]"_s);
    EXPECT_EQ(browser.people().model().index(2, 2).data(Qt::CheckStateRole).toInt(), int(Qt::Unchecked));
    group(browser, u"CTFT-Org"_s);
    EXPECT_TRUE(browser.showRow(3)) << "not in the group: everybody is listed";
    EXPECT_EQ(browser.statusText(), u"Sel. 1   3 botaniste(s)"_s);
    picture(browser, u"collecteurs"_s);
}

TEST_F(ThreeBrowsers, ACollectorThatLeavesItsGroupStaysShown)
{
    auto& browser = open(new reference::Form10(world));
    group(browser, u"CTFT-Org"_s);
    EXPECT_TRUE(browser.showRow(1));
    type(browser, u"Organisme"_s, u"IRD"_s);
    browser.run(TabCommand::Save); // the last one of its organisation
    QCoreApplication::processEvents();
    EXPECT_EQ(browser.control().currentId(), 1);
    EXPECT_EQ(line(browser, u"Organisme"_s)->text(), u"IRD"_s);
    EXPECT_EQ(rows(browser).size(), 3);
    EXPECT_EQ(browser.groups().currentIndex(), browser.groupOf(u"0-Col"_s));
    EXPECT_FALSE(browser.groupOf(u"CTFT-Org"_s).isValid());
    // One of a new organisation added in the dialog of a field, as any list may add it.
    form.steps.push_back({{{u"Collecteur"_s, u"Kew"_s}, {u"Initiales"_s, u"K"_s}, {u"Organisme"_s, u"RBG"_s}}});
    EXPECT_TRUE(world->people.Add());
    QCoreApplication::processEvents();
    EXPECT_TRUE(browser.groupOf(u"RBG-Org"_s).isValid());
    EXPECT_TRUE(browser.mayClose());
}

TEST_F(ThreeBrowsers, ACollectorOfANameThatExistsIsRefusedUnderItsField)
{
    auto& browser = open(new reference::Form10(world));
    browser.showRow(3);
    type(browser, u"Collecteur"_s, u"uma"_s);
    support::expectWarning(u"save 3022"_s);
    browser.run(TabCommand::Save);
    EXPECT_EQ(label(browser, u"erreur-Collecteur"_s), u"Nom : < Erreur: Ce nom existe déjà >"_s);
    type(browser, u"Collecteur"_s, u"Zoé Martin"_s);
    type(browser, u"Organisme"_s, u"IRD"_s);
    browser.run(TabCommand::Save);
    EXPECT_EQ(world->people.NomBotaniste(3, 0), u"Zoé Martin"_s);
    EXPECT_TRUE(browser.groupOf(u"IRD-Org"_s).isValid());
    EXPECT_EQ(rows(browser).last(), u"Zoé Martin"_s);
    // By keyboard: one more, then both deleted.
    form.steps.push_back({{{u"Collecteur"_s, u"Yves"_s}, {u"Initiales"_s, u"Y"_s}}});
    QTest::keyClick(&browser.control().view(), Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(browser.control().currentId(), 4);
    QTest::keyClick(&browser.control().view(), Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(browser.control().selectedIds(), (QList<qint32>{4, 3}));
    project.dialogues.expectConfirm(u"Vous allez SUPPRIMER les 2 Collecteurs sélectionnés...!!!\rLa suppression d'un Collecteur entraîne la rupture définitive des liens\r\rSupprimer les Collecteurs sélectionnés ?"_s,
                                    u"Suppression..."_s, true, BoxIcon::Stop);
    QTest::keyClick(&browser.control().view(), Qt::Key_Delete);
    EXPECT_EQ(rows(browser), (QStringList{u"Aubréville"_s, u"Uma"_s}));
}

TEST_F(ThreeBrowsers, LinksOpenTheAddressOfTheSelectedRow)
{
    data::PropertyStore& store = world->store;
    for (const QString& name : {u"IPNI"_s, u"Google Images"_s})
        EXPECT_TRUE(store.value(u"Liens"_s, u"Taxons"_s, name).isValid()) << "every project starts with it: " << name.toStdString();
    auto& browser = open(new reference::TaxonBrowser(world));
    browser.showRow(3);
    auto* menu = browser.findChild<QMenu*>(u"menuLiens"_s);
    Q_EMIT menu->aboutToShow();
    EXPECT_EQ(menu->actions().first()->text(), u"&Modifier les liens…"_s);
    menu->findChild<QAction*>(u"lien-Google Images"_s)->trigger();
    EXPECT_EQ(opener.addresses, QStringList{u"https://images.google.com/images?q=%22Quercus robur%22"_s});
}

TEST_F(ThreeBrowsers, LinksAreEdited)
{
    reference::WizardLinks wizard(world, data::Botaniste);
    EXPECT_EQ(wizard.windowTitle(), u"Lien vers une base Online"_s);
    EXPECT_EQ(wizard.list().count(), 0);
    EXPECT_TRUE(wizard.findChild<QLabel*>(u"marques"_s)->text().contains(u"@NOM@, @INITIALE@, @ORGANISME@"_s));
    form.steps.push_back({{{u"Nom"_s, u"HUH"_s}, {u"Lien"_s, u"https://huh.example/?n=@NOM@"_s}}});
    wizard.clLinks_Add();
    form.steps.push_back({{{u"Nom"_s, u"Harvard"_s}}});
    wizard.clLinks_Edit();
    ASSERT_EQ(wizard.list().count(), 1);
    EXPECT_EQ(wizard.list().item(0)->text(), u"Harvard"_s);
    EXPECT_EQ(world->store.value(u"Liens"_s, u"Botanistes"_s, u"Harvard"_s), u"https://huh.example/?n=@NOM@"_s);
    project.dialogues.expectConfirm(u" Supprimer la propriété Harvard ?"_s, u"Gestion des propriétés"_s, true);
    wizard.clLinks_Delete();
    EXPECT_EQ(wizard.list().count(), 0);
}

} // namespace
