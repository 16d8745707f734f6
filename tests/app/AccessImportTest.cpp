// Projects made of old Access files.
#include "Forge.h"

#include "app/AccessImport.h"
#include "app/AccessModules.h"
#include "app/ModuleTree.h"
#include "data/Verification.h"
#include "jet/Recordset.h"
#include "support/Project.h"

#include <QDir>
#include <QFileInfo>

namespace {

using namespace Qt::StringLiterals;
using platform::BoxIcon;

const QString caption = u"Herbora - Ancienne base Access"_s;

QString sample(const QString& name)
{
    return qEnvironmentVariable("HERBORA_SOURCE") + u"/tests/jet/access/samples/"_s + name;
}

class AccessImport : public testing::Test, public support::TestProject {
protected:
    void SetUp() override { ASSERT_TRUE(QFile::copy(sample(u"ancien-projet.hbx"_s), old)); }

    app::AccessPlan plan() const { return {old, target}; }
    bool import() { return app::convertAndOpen(session, plan(), progression); }
    QString report() { return db().Property(app::importReportProperty).toString(); }
    QStringList files() const { return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name | QDir::IgnoreCase); }

    QString old = path(u"ancien.hbx"_s);
    QString target = path(u"nouveau.hbx"_s);
};

/// Stops when a step with this text comes.
class Stopping : public platform::Progression {
public:
    explicit Stopping(const QString& text) : m_text(text) {}
    void step(const QString& text, int) override { m_stopped = m_stopped || text == m_text; }
    bool cancelled() const override { return m_stopped; }

private:
    QString m_text;
    bool m_stopped = false;
};

TEST_F(AccessImport, BringsAnOldProjectToWhatTheProgramWorksWith)
{
    ASSERT_TRUE(import());
    QStringList modules;
    for (const data::ModuleRecord& module : session.modules())
        modules << module.name + u' ' + module.provider;
    EXPECT_EQ(modules.join(u'|').toStdString(), "Individus Individus|Déterminations Déterminations|Images User|Mesures User");
    const QList<std::pair<QString, int>> counts{{u"Individus"_s, 504}, {u"Déterminations"_s, 727}, {u"Images"_s, 25},
                                                {u"Mesures"_s, 450}, {u"Taxons"_s, 996}, {u"Localités"_s, 860},
                                                {u"Collecteurs"_s, 564}, {u"Propriétés"_s, 5}};
    for (const auto& [table, count] : counts)
        EXPECT_EQ(single(u"SELECT Count(*) FROM ["_s + table + u']').toInt(), count) << table.toStdString();
    EXPECT_EQ(data::verify(db(), session.modules()).join(u'\n').toStdString(), "");
    EXPECT_TRUE(db().schema().relation(u"Mesures"_s)->DeleteCascade);
    EXPECT_TRUE(db().schema().table(u"Mesures"_s)->index(u"MixUnique"_s));
    EXPECT_TRUE(db().schema().query(u"N_Images"_s));
    EXPECT_EQ(session.dictionary().module(u"Mesures"_s)->field(u"Caractère"_s)->descriptors.size(), 9);
}

TEST_F(AccessImport, LeavesTheOldFileUntouchedAndNothingElseBehind)
{
    const QByteArray before = [this] { QFile file(old); EXPECT_TRUE(file.open(QIODevice::ReadOnly)); return file.readAll(); }();
    const QDateTime stamp = QFileInfo(old).lastModified();
    ASSERT_TRUE(import());
    session.close();
    QFile file(old);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), before);
    EXPECT_EQ(QFileInfo(old).lastModified(), stamp);
    EXPECT_EQ(files(), (QStringList{u"ancien.hbx"_s, u"Herbora.ini"_s, u"nouveau.hbx"_s}));
}

TEST_F(AccessImport, NumbersNewRecordsBehindEveryNumberEverGiven)
{
    {
        // Records with greater numbers were there, and deleted.
        jet::access::AccessFile source(old);
        QFile file(old);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        for (const jet::access::TableEntry& table : source.tables()) {
            if (table.name != u"Mesures" && table.name != u"Images")
                continue;
            file.seek(qint64(table.page) * jet::access::jet4.pageSize + jet::access::jet4.counter);
            const quint32 counter = qToLittleEndian(table.name == u"Mesures" ? quint32(7000) : quint32(0));
            file.write(reinterpret_cast<const char*>(&counter), sizeof counter);
        }
    }
    ASSERT_TRUE(import());
    db().Execute(u"INSERT INTO Mesures ([Caractère],[ID Individus]) VALUES (\"Essai\",1)"_s);
    EXPECT_EQ(single(u"SELECT Max([ID Mesures]) FROM Mesures"_s).toInt(), 7001);
    const int largest = single(u"SELECT Max([ID Images]) FROM Images"_s).toInt();
    db().Execute(u"INSERT INTO Images ([ID Individus]) VALUES (1)"_s);
    EXPECT_EQ(single(u"SELECT Max([ID Images]) FROM Images"_s).toInt(), largest + 1);
}

TEST_F(AccessImport, KeepsAReportWithTheProject)
{
    ASSERT_TRUE(import());
    const QString text = report();
    for (const QString& part : {u"Format : Jet 4 (Access 2000 à 2003)"_s, u"Tables : 9, 4155 enregistrements"_s,
                                u"Individus : 504 enregistrements, 13 champs, 1 index"_s, u"  - N_Images"_s,
                                u"index « Unique » de la table « Taxons »"_s})
        EXPECT_TRUE(text.contains(part)) << part.toStdString() << "\n" << text.toStdString();
    session.close();
    ASSERT_TRUE(session.open(target, progression));
    EXPECT_EQ(report(), text);
}

TEST_F(AccessImport, NeverReplacesAFile)
{
    QFile there(target);
    ASSERT_TRUE(there.open(QIODevice::WriteOnly));
    there.write("important");
    there.close();
    dialogues.expectLike({u"n'a pas été convertie"_s, u"nouveau.hbx"_s}, caption, BoxIcon::Stop);
    EXPECT_FALSE(import());
    EXPECT_EQ(QFileInfo(target).size(), 9);
    EXPECT_EQ(QFileInfo(app::convertedPath(old)).fileName(), u"ancien (converti).hbx"_s);
    QFile::copy(old, app::convertedPath(old));
    EXPECT_EQ(QFileInfo(app::convertedPath(old)).fileName(), u"ancien (converti 2).hbx"_s);
}

TEST_F(AccessImport, LeavesNothingWhenItIsStopped)
{
    for (const QString& step : {u"Lecture de l'ancienne base"_s, u"Table « Mesures »"_s, u"Écriture du nouveau projet"_s}) {
        Stopping stopping(step);
        dialogues.expectLike({u"annulée"_s}, caption, BoxIcon::Information);
        EXPECT_FALSE(app::convertAndOpen(session, plan(), stopping)) << step.toStdString();
        EXPECT_EQ(files(), QStringList{u"ancien.hbx"_s}) << step.toStdString();
    }
}

TEST_F(AccessImport, AsksOnceAndThenForThePassword)
{
    dialogues.expectConfirm(u"Le fichier « %1 » est une ancienne base Access.\n"
                            "Herbora va en faire un nouveau projet, « ancien (converti).hbx », et l'ouvrir. L'ancien fichier "
                            "n'est pas modifié.\nVoulez-vous continuer ?"_s.arg(old), caption, true);
    const QString first = u"Mot de passe de l'ancienne base :"_s;
    dialogues.expectInput(caption, first, {}, u"faux"_s);
    dialogues.expectInput(caption, u"Ce n'est pas le mot de passe de l'ancienne base.\nMot de passe :"_s, {}, u"Vrai"_s);
    QFile file(old);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    QByteArray bytes = file.readAll();
    forge::setPassword(bytes, u"Vrai"_s);
    file.seek(0);
    file.write(bytes);
    file.close();
    const std::optional<app::AccessPlan> agreed = app::planConversion(session.surroundings(), old);
    ASSERT_TRUE(agreed);
    EXPECT_EQ(agreed->target, path(u"ancien (converti).hbx"_s));
    EXPECT_EQ(agreed->password, u"Vrai"_s);
    EXPECT_TRUE(app::convertAccess(session.surroundings(), *agreed, progression).contains(u"pas de mot de passe"_s));
}

TEST_F(AccessImport, OpensAnAccessFileThatIsNoProject)
{
    QFile::remove(old);
    ASSERT_TRUE(QFile::copy(sample(u"indexTestV2010.accdb"_s), old));
    ASSERT_TRUE(import());
    EXPECT_EQ(rows(u"SELECT * FROM Table1 ORDER BY id"_s).size(), 4);
    EXPECT_TRUE(report().contains(u"pas de dictionnaire d'Herbora"_s));
    EXPECT_EQ(data::verify(db(), session.modules()).join(u'\n').toStdString(), "");
}

TEST_F(AccessImport, KeepsModulesWhoseProviderNobodyHas)
{
    create();
    session.close();
    {
        const auto database = jet::Database::Open(path());
        for (const QString& values : {u"\"Addin\",\"Flore\",\"Flore\",\"gtFlore\",-1"_s, u"\"TabEdit\",\"Nom\",\"Flore\",\"gtFlore\",0"_s,
                                      u"\"Addin\",\"Sols\",\"Sols\",\"gtSols\",5"_s, u"\"TabEdit\",\"pH\",\"Perdu\",\"gtSols\",0"_s})
            database->Execute(u"INSERT INTO PGTableDefs ([Type],[Table],[NomModule],[ModuleConnexion],[Index]) VALUES ("_s + values + u')');
        database->Execute(u"UPDATE PGTableDefs SET NomObjet = [Table], Version = \"3\" WHERE NomObjet IS NULL"_s);
        const QStringList remarks = app::adoptModules(*database, {u"gtSols"_s});
        EXPECT_EQ(remarks.size(), 3) << remarks.join(u'\n').toStdString();
    }
    dialogues.expectLike({u"gtSols"_s}, u"Herbora"_s, BoxIcon::Warning);
    ASSERT_TRUE(open());
    const data::ModuleRecord* flora = session.dictionary().module(u"Flore"_s);
    ASSERT_TRUE(flora);
    EXPECT_TRUE(flora->isUser());
    EXPECT_TRUE(flora->field(u"Nom"_s));
    EXPECT_FALSE(session.dictionary().module(u"Sols"_s)) << "its library was said to be there, and is not";
    EXPECT_EQ(single(u"SELECT Count(*) FROM PGTableDefs WHERE NomModule = \"Perdu\""_s).toInt(), 1);
}

} // namespace
