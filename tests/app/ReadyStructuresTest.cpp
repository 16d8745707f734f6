#include "app/ReadyStructures.h"
#include "data/Verification.h"
#include "support/Project.h"
#include "support/Files.h"

using namespace Qt::StringLiterals;
using support::TestProject;

namespace {

const QString shipped = qEnvironmentVariable("HERBORA_SOURCE") + u"/structures"_s;

TEST(ReadyStructures, MakeProjectsThatAreReadyForWork)
{
    const QList<app::ReadyStructure> all = app::readyStructures(shipped);
    EXPECT_EQ(all.size(), QDir(shipped).entryList({u"*.json"_s}).size()) << "one was left out";
    ASSERT_GE(all.size(), 3);
    EXPECT_EQ(all.first().name, u"Herbier"_s);
    for (const app::ReadyStructure& structure : all) {
        SCOPED_TRACE(structure.name.toStdString());
        TestProject project;
        ASSERT_TRUE(project.session.create(project.path(), project.progression, structure.modules));
        EXPECT_EQ(data::verify(project.db(), project.session.modules()), QStringList());
        for (const data::ModuleRecord& module : structure.modules) {
            const data::ModuleRecord* made = project.session.dictionary().module(module.name);
            ASSERT_TRUE(made) << module.name.toStdString();
            ASSERT_EQ(made->fields.size(), module.fields.size());
            for (qsizetype i = 0; i < module.fields.size(); ++i) {
                EXPECT_EQ(made->fields[i].caption, module.fields[i].caption);
                EXPECT_EQ(made->fields[i].type, module.fields[i].type);
                EXPECT_EQ(made->fields[i].rule, module.fields[i].rule);
                EXPECT_EQ(made->fields[i].flags, module.fields[i].flags);
            }
        }
        // It stays as it was made.
        project.session.close();
        ASSERT_TRUE(project.open());
        EXPECT_TRUE(project.session.dictionary().module(structure.modules.first().name));
    }
}

TEST(ReadyStructures, LeaveOutWhatCannotBeUnderstood)
{
    QTemporaryDir folder;
    const auto write = [&](const QString& name, const QByteArray& text) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    };
    write(u"a.json"_s, "{");
    write(u"b.json"_s, R"({"nom":"B","modules":[{"nom":"M","champs":[{"nom":"x","type":"Couleur"}]}]})");
    write(u"c.json"_s, R"({"nom":"C","modules":[{"nom":"M","champs":[]}]})");
    write(u"d.json"_s, R"({"nom":"D","modules":[{"nom":"M","champs":[{"nom":"x","type":"Entier"}]}]})");
    const QList<app::ReadyStructure> all = app::readyStructures(folder.path());
    ASSERT_EQ(all.size(), 1);
    EXPECT_EQ(all.first().name, u"D"_s);
    EXPECT_EQ(all.first().modules.first().fields.first().column, u"x"_s);
}

/// A name that was taken: the project there is kept, anything else is not touched.
TEST(ReadyStructures, ANewProjectKeepsTheOneThatItReplaces)
{
    TestProject project;
    project.create();
    project.db().Execute(u"INSERT INTO Individus ([Numéro]) VALUES ('ancien')"_s);
    project.session.close();
    ASSERT_TRUE(project.session.create(project.path(), project.progression, {}, true));
    EXPECT_EQ(project.single(u"SELECT Count(*) FROM Individus"_s).toInt(), 0);
    project.session.close();
    ASSERT_TRUE(project.session.open(project.path(u"projet.hbx.bak"_s), project.progression));
    EXPECT_EQ(project.single(u"SELECT [Numéro] FROM Individus"_s), u"ancien"_s);
    project.session.close();

    QFile other(project.path(u"lettre.hbx"_s));
    ASSERT_TRUE(other.open(QIODevice::WriteOnly));
    other.write("Chère amie");
    other.close();
    project.dialogues.expectLike({u"Impossible de créer la base de données :"_s, u"lettre.hbx"_s}, u"Herbora"_s,
                                 platform::BoxIcon::Stop);
    EXPECT_FALSE(project.session.create(other.fileName(), project.progression, {}, true));
    EXPECT_EQ(QFileInfo(other).size(), 11);
}

} // namespace
