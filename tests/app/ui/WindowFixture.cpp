#include "WindowFixture.h"

#include "support/Project.h"

namespace support {

using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 20000;

const QStringList content{
    u"INSERT INTO Collecteurs ([Collecteur],[Initiales]) VALUES (\"Émile Aubréville\",\"EA\")"_s,
    u"INSERT INTO Collecteurs ([Collecteur],[Initiales]) VALUES (\"Zoé Martin\",\"ZM\")"_s,
    u"INSERT INTO Localités ([Localité],[LongDD],[LatDD],[Nom Entier],[CodeRegion],[ID Type]) VALUES (\"Gabon\",11.5,-0.5,\"Gabon\",\"1\",0)"_s,
    u"INSERT INTO Localités ([Localité],[LongDD],[LatDD],[Nom Entier],[CodeRegion],[ID Type]) VALUES (\"Makokou\",12.8667,0.5667,\"Gabon - Makokou\",\"1/2\",1)"_s,
    u"INSERT INTO Taxons ([Taxon],[Nom Complet],[ID Famille]) VALUES (\"Burseraceae\",\"Burseraceae\",1)"_s,
    u"INSERT INTO Taxons ([Taxon],[Nom Complet],[ID Famille],[ID Genre]) VALUES (\"Aucoumea\",\"Aucoumea\",1,2)"_s,
    u"INSERT INTO Taxons ([Taxon],[Nom Complet],[Auteurs],[ID Famille],[ID Genre],[ID Espèce]) VALUES (\"klaineana\",\"Aucoumea klaineana\",\"Pierre\",1,2,3)"_s,
    u"INSERT INTO Taxons ([Taxon],[Nom Complet],[Auteurs],[ID Famille],[ID Genre],[ID Espèce],[ID Valid]) VALUES (\"vieja\",\"Aucoumea vieja\",\"X.\",1,2,4,3)"_s,
    u"INSERT INTO Individus ([Numéro],[ID Collecteurs],[DateRécolte],[ID Localités],[Altitude],[Habitat]) VALUES (\"EA 12\",1,\"1998/05/02\",2,1234.5,\"forêt \"\"dense\"\"\")"_s,
    u"INSERT INTO Individus ([Numéro],[ID Collecteurs],[ID Localités]) VALUES (\"ZM 3\",2,1)"_s,
    u"INSERT INTO Individus ([Numéro]) VALUES (\"sans nom\")"_s,
    u"INSERT INTO Déterminations ([ID Individus],[ID Taxons],[ID Collecteurs]) VALUES (1,2,1)"_s,
    u"INSERT INTO Déterminations ([ID Individus],[ID Taxons],[ID Collecteurs]) VALUES (1,3,2)"_s,
    u"INSERT INTO Déterminations ([ID Individus],[ID Taxons]) VALUES (2,2)"_s,
    u"INSERT INTO Déterminations ([ID Individus],[ID Taxons]) VALUES (3,1)"_s,
    u"UPDATE Individus SET [ID Déterminations]=2 WHERE [ID Individus]=1"_s,
    u"UPDATE Individus SET [ID Déterminations]=3 WHERE [ID Individus]=2"_s,
    u"INSERT INTO Propriétés ([Objet],[Module],[Nom],[Value]) VALUES (\"Requête\",\"Individus\",\"En altitude\",\"x\")"_s,
    u"INSERT INTO Propriétés ([Objet],[Module],[Nom],[Value]) VALUES (\"Modèle\",\"Individus\",\"Récolte\",\"x\")"_s,
};

} // namespace

void WindowTest::SetUpTestSuite()
{
    static const bool once = [] {
        app::prepareApplication();
        return true;
    }();
    ASSERT_TRUE(once);
}

void WindowTest::start()
{
    program = std::make_unique<app::Program>(
        app::ProgramOptions{folder.path(), path(u"Herbora.ini"_s), path(u"etat.ini"_s)}, dialogues);
    window().show();
}

void WindowTest::stop()
{
    if (!program)
        return;
    settle();
    window().close();
    program.reset();
}

void WindowTest::makeProject(const QString& name)
{
    // Built once for all tests, then copied while nobody has it open.
    static TestProject original;
    static const bool built = [] {
        original.create();
        for (const QString& statement : content)
            original.db().Execute(statement);
        original.session.close();
        return true;
    }();
    ASSERT_TRUE(built && QFile::copy(original.path(), path(name)));
}

void WindowTest::openProject(const QString& name)
{
    window().commands().openPath(path(name));
    settle();
    ASSERT_TRUE(program->session().isOpen());
}

void WindowTest::settle()
{
    const bool quiet = QTest::qWaitFor(
        [this] {
            if (program->runner().isRunning() || window().commands().isBusy())
                return false;
            for (app::GridTab* grid : window().documents().grids()) {
                if (grid->model().isLoading() || (grid->model().rows() && !grid->model().isComplete()))
                    return false;
            }
            return true;
        },
        patience);
    ASSERT_TRUE(quiet) << "still at work";
    QCoreApplication::sendPostedEvents();
}

QAction* WindowTest::action(const QString& name)
{
    auto* found = window().findChild<QAction*>(name);
    EXPECT_TRUE(found) << name.toStdString();
    return found;
}

void WindowTest::trigger(const QString& name)
{
    QAction* found = action(name);
    ASSERT_TRUE(found->isEnabled() && found->isVisible()) << name.toStdString();
    found->trigger();
    settle();
}

app::GridTab* WindowTest::openRecords(const QString& key)
{
    auto* tree = widget<QTreeView>(u"moduleTree"_s);
    const QModelIndex index = window().dock().model().indexOf(key);
    EXPECT_TRUE(index.isValid()) << key.toStdString();
    tree->setCurrentIndex(index);
    if (action(u"openReference"_s)->isEnabled())
        action(u"openModule"_s)->trigger(); // Return opens the browser of a reference list
    else
        QTest::keyClick(tree, Qt::Key_Return);
    settle();
    return window().documents().currentGrid();
}

int WindowTest::columnOf(app::GridTab& grid, const QString& header)
{
    for (int column = 0; column < grid.model().columnCount(); ++column) {
        if (grid.model().headerData(column, Qt::Horizontal).toString() == header)
            return column;
    }
    ADD_FAILURE() << "no column " << header.toStdString();
    return 0;
}

QStringList WindowTest::shown(app::GridTab& grid, const QStringList& headers)
{
    QStringList rows;
    for (int row = 0; row < grid.model().rowCount(); ++row) {
        QStringList cells;
        for (const QString& header : headers)
            cells << grid.model().index(row, columnOf(grid, header)).data().toString();
        rows << cells.join(u'|');
    }
    return rows;
}

} // namespace support
