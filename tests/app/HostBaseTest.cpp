#include "AddinFixture.h"

namespace {

using namespace Qt::StringLiterals;

class FakeViews : public app::HostViews, public editing::FormDialogue {
public:
    QString module = u"Images"_s;
    QList<qint32> selected{2, 1};
    QStringList calls;
    QString typed = u"Aublet"_s;

    quintptr windowHandle() const override { return 99; }
    QString activeModule() const override { return module; }
    QString currentStatement() const override { return u"SELECT 1"_s; }
    QString mode() const override { return u"picture"_s; }
    QList<qint32> selectedRecords() const override { return selected; }
    QList<qint32> shownRecords() const override { return {1, 2, 3}; }
    void refresh(const QString& name) override { calls << u"refresh "_s + name; }
    bool editRecord(const QString& key) override
    {
        calls << u"edit "_s + key;
        return true;
    }
    editing::FormDialogue* form() override { return this; }
    bool edit(const QString& title, editing::Cl_Editions& form,
              const std::function<bool(editing::Cl_Editions&)>& save) override
    {
        calls << title;
        form.Item(0)->setValue(typed);
        return save(form);
    }
};

class HostBaseTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        project.create();
        auto& db = project.db();
        db.Execute(u"INSERT INTO Collecteurs ([Collecteur],[Initiales]) VALUES (\"Fusée Aublet\",\"F.A.\")"_s);
        db.Execute(u"INSERT INTO Taxons ([Taxon],[Nom Complet],[ID Famille]) VALUES (\"Rosaceae\",\"Rosaceae\",1)"_s);
        db.Execute(u"INSERT INTO Localités ([Localité],[LongDD],[LatDD],[CodeRegion],[ID Type]) VALUES (\"Guyane\",0,0,\"1\",0)"_s);
        db.Execute(u"INSERT INTO Individus ([Numéro],[Altitude],[ID Déterminations]) VALUES (\"12\",400,1)"_s);
        db.Execute(u"INSERT INTO Individus ([Numéro]) VALUES (\"13\")"_s);
        db.Execute(u"INSERT INTO Déterminations ([ID Individus],[ID Taxons]) VALUES (1,1)"_s);
        db.Execute(u"INSERT INTO Images ([ID Individus],[Fichier],[ID Collecteurs]) VALUES (1,\"a.jpg\",1)"_s);
        db.Execute(u"INSERT INTO Images ([ID Individus],[Fichier]) VALUES (2,\"b.jpg\")"_s);
    }
    addin::Base& host() { return project.session.host(); }

    AddinProject project;
    FakeViews views;
};

TEST_F(HostBaseTest, HandsOutRecordsAndNames)
{
    EXPECT_EQ(host().GetFileName(), project.session.path());
    const addin::TabEditions fields = host().GetEditObject(u"images"_s, 1);
    ASSERT_EQ(fields.size(), project.session.dictionary().module(u"Images")->fields.size());
    EXPECT_EQ(fields[0]->value.toString(), u"a.jpg"_s);
    EXPECT_FALSE(fields[0]->AllowNull);
    EXPECT_FALSE(fields[1]->value.isValid());
    EXPECT_EQ(fields[0]->IDItem, 1);
    EXPECT_EQ(fields[0]->IDIndividu, 1);
    EXPECT_TRUE(host().GetEditObject(u"Images"_s, 77).isEmpty());
    EXPECT_TRUE(host().GetEditObject(u"Absent"_s, 1).isEmpty());

    EXPECT_EQ(host().Valeur(u"Individus"_s, 1, u"Altitude"_s).toDouble(), 400);
    EXPECT_FALSE(host().Valeur(u"Individus"_s, 2, u"Altitude"_s).isValid());
    EXPECT_FALSE(host().Valeur(u"Individus"_s, 1, u"Absente"_s).isValid());
    EXPECT_EQ(host().Détermination(1), 1);
    EXPECT_EQ(host().Détermination(2), 0);

    EXPECT_EQ(host().Botaniste(1), u"Fusée Aublet"_s);
    EXPECT_EQ(host().Localité(1), u"Guyane"_s);
    EXPECT_EQ(host().Taxon(1), u"Rosaceae"_s);
    EXPECT_EQ(host().Botaniste(5), u"5"_s);
    EXPECT_EQ(host().Localité(5), u"5"_s);
    EXPECT_EQ(host().Taxon(5), u"5"_s);
}

TEST_F(HostBaseTest, RunsStatementsAndKeepsProperties)
{
    QString error = u"?"_s;
    EXPECT_EQ(host().mdbase(u" SELECT Fichier,[ID Collecteurs] FROM Images ORDER BY Fichier"_s, &error),
              (QList<QVariantList>{{u"a.jpg"_s, 1}, {u"b.jpg"_s, QVariant()}}));
    EXPECT_EQ(error, QString());
    EXPECT_EQ(host().mdbase(u"UPDATE Images SET [Légende]=\"x\""_s), (QList<QVariantList>{{2}}));
    EXPECT_TRUE(host().mdbase(u"SELECT * FROM Absente"_s, &error).isEmpty());
    EXPECT_TRUE(error.contains(u"Absente"_s)) << error.toStdString();

    EXPECT_FALSE(host().PropertyGet(u"Base"_s, u"Images"_s, u"rangs"_s).isValid());
    EXPECT_TRUE(host().PropertyLet(u"Base"_s, u"Images"_s, u"rangs"_s, u"12"_s));
    EXPECT_EQ(host().PropertyGet(u"Base"_s, u"Images"_s, u"rangs"_s).toString(), u"12"_s);

    QFile picture(project.path(u"photo.txt"_s));
    ASSERT_TRUE(picture.open(QIODevice::WriteOnly));
    picture.write("\x89PNG\r\n\x1a\n----");
    picture.close();
    EXPECT_EQ(host().OLEFiletype(picture.fileName()), u"image/png"_s); // by what it holds
    EXPECT_EQ(host().OLEFiletype(project.path(u"absent"_s)), QString());
}

TEST_F(HostBaseTest, AnswersFromTheWindows)
{
    EXPECT_EQ(host().CountSel(), 0);
    EXPECT_FALSE(host().EditItem(u"1-Images"_s));
    addin::TabEditions form = {std::make_shared<addin::ChpEdition>()};
    form[0]->AllowNull = false;
    EXPECT_FALSE(host().Wizard(u"Saisie"_s, form));

    project.session.host().setViews(&views);
    EXPECT_EQ(host().Hwnd(), 99u);
    EXPECT_EQ(host().ActiveModule(), u"Images"_s);
    EXPECT_EQ(host().CurrentSQL(), u"SELECT 1"_s);
    EXPECT_EQ(host().ModeRun(), u"picture"_s);
    EXPECT_EQ(host().CountSel(), 2);
    EXPECT_EQ(host().AllIDItems(), (QList<qint32>{1, 2, 3}));
    EXPECT_EQ(host().SelectedIDItems(), (QList<qint32>{2, 1}));
    EXPECT_EQ(host().SelectedIDIndividu(), (QList<qint32>{2, 1})); // the owners of the two pictures
    EXPECT_EQ(host().Individu(), 2);
    host().UpdateBase(u"Images"_s);
    EXPECT_TRUE(host().EditItem(u"1-Images"_s));
    EXPECT_TRUE(host().Wizard(u"Saisie"_s, form));
    EXPECT_EQ(form[0]->value.toString(), u"Aublet"_s);
    views.typed = u"Null"_s;
    EXPECT_FALSE(host().Wizard(u"Saisie"_s, form));
    EXPECT_EQ(views.calls, (QStringList{u"refresh Images"_s, u"edit 1-Images"_s, u"Saisie"_s, u"Saisie"_s}));
    project.session.host().setViews(nullptr);
}

TEST_F(HostBaseTest, AnswersEmptyWithoutAProject)
{
    project.session.host().setViews(&views);
    project.session.close();
    QString error;
    EXPECT_EQ(host().GetFileName(), QString());
    EXPECT_TRUE(host().mdbase(u"SELECT * FROM Images"_s, &error).isEmpty());
    EXPECT_FALSE(error.isEmpty());
    EXPECT_TRUE(host().GetEditObject(u"Images"_s, 1).isEmpty());
    EXPECT_EQ(host().Botaniste(1), u"1"_s);
    EXPECT_FALSE(host().PropertyLet(u"Base"_s, u"Images"_s, u"x"_s, u"y"_s));
    EXPECT_EQ(host().ActiveModule(), QString());
    EXPECT_EQ(host().Individu(), 0);
    EXPECT_FALSE(host().EditItem(u"1-Images"_s));
    EXPECT_TRUE(views.calls.isEmpty());
    project.session.host().setViews(nullptr);
}

} // namespace
