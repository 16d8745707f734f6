#include "WindowFixture.h"

#include <QMenu>

namespace {

using namespace Qt::StringLiterals;

class Recent : public support::WindowTest {
protected:
    QMenu* shownMenu()
    {
        auto* menu = widget<QMenu>(u"menuRecents"_s);
        Q_EMIT menu->aboutToShow();
        return menu;
    }
    static QStringList texts(const QMenu* menu)
    {
        QStringList all;
        for (const QAction* action : menu->actions()) {
            if (!action->isSeparator())
                all << (action->isEnabled() ? QString() : u"-"_s) + action->text().section(u" — "_s, 0, 0);
        }
        return all;
    }
};

TEST_F(Recent, LatestFirstMissingOnesGreyedAndKeptForTheNextStart)
{
    EXPECT_EQ(texts(shownMenu()), (QStringList{u"-Aucun projet récent"_s, u"-&Effacer la liste"_s}));
    makeProject(u"a & b.hbx"_s);
    makeProject(u"c.hbx"_s);
    openProject(u"a & b.hbx"_s);
    openProject(u"c.hbx"_s);
    stop();
    QFile::remove(path(u"c.hbx"_s));
    start();
    EXPECT_EQ(texts(shownMenu()), (QStringList{u"-&1  c.hbx"_s, u"&2  a && b.hbx"_s, u"&Effacer la liste"_s}));
    trigger(u"recent2"_s);
    EXPECT_EQ(window().windowTitle(), u"a & b.hbx - Herbora"_s);
    EXPECT_EQ(texts(shownMenu()).first(), u"&1  a && b.hbx"_s);
    trigger(u"recentClear"_s);
    EXPECT_EQ(texts(shownMenu()).size(), 2);
}

TEST(RecentFiles, KeepTenWithoutRepeats)
{
    app::WindowState state{QString()};
    app::RecentFiles files(state);
    for (int i = 0; i < 12; ++i)
        files.add(u"/p/%1.hbx"_s.arg(i));
    files.add(u"/p/5.hbx"_s);
    EXPECT_EQ(files.paths().size(), 10);
    EXPECT_EQ(files.paths().mid(0, 3), (QStringList{u"/p/5.hbx"_s, u"/p/11.hbx"_s, u"/p/10.hbx"_s}));
    EXPECT_EQ(files.paths().count(u"/p/5.hbx"_s), 1);
}

TEST(WindowState, LivesInTheFolderOfStates)
{
    const QByteArray before = qgetenv("XDG_STATE_HOME");
    qputenv("XDG_STATE_HOME", "/etats");
    EXPECT_EQ(app::WindowState::defaultFile(), u"/etats/herbora/fenetres.ini"_s);
    for (const char* unset : {"", "relatif"}) {
        qputenv("XDG_STATE_HOME", unset);
        EXPECT_EQ(app::WindowState::defaultFile(), QDir::homePath() + u"/.local/state/herbora/fenetres.ini"_s);
    }
    before.isEmpty() ? qunsetenv("XDG_STATE_HOME") : qputenv("XDG_STATE_HOME", before);
}

} // namespace
