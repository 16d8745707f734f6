#include "HouseRules.h"
#include "support/Print.h"

#include <QDirIterator>
#include <QFile>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QString root()
{
    return qEnvironmentVariable("HERBORA_SOURCE");
}

QString contents(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return QString::fromUtf8(file.readAll());
}

QStringList widgetHeaders()
{
    return contents(root() + u"/tests/house/widget_headers.txt"_s).split(u'\n', Qt::SkipEmptyParts);
}

QStringList rulesBroken(const QString& path, const QString& text)
{
    static const QStringList widgets = widgetHeaders();
    QStringList names;
    for (const auto& finding : house::examine(path, text, widgets)) {
        names << finding.rule;
    }
    return names;
}

struct Case {
    QString rule;
    QString path;
    QString text;
};

const QList<Case> bad{
    {u"include-module-qt"_s, u"src/jet/A.h"_s, u"#include <QtCore/QString>\n"_s},
    {u"include-module-qt"_s, u"tests/jet/A.cpp"_s, u"  # include <QtWidgets/QWidget>\n"_s},
    {u"include-parent"_s, u"src/data/A.cpp"_s, u"#include \"../jet/Error.h\"\n"_s},
    {u"sqlite-hors-du-moteur"_s, u"src/data/A.cpp"_s, u"#include <sqlite3.h>\n"_s},
    {u"sqlite-hors-du-moteur"_s, u"src/cli/A.cpp"_s, u"#include \"sqlite3ext.h\"\n"_s},
    {u"widgets-hors-de-ui"_s, u"src/query/A.h"_s, u"#include <QTableView>\n"_s},
    {u"widgets-hors-de-ui"_s, u"src/cli/A.h"_s, u"#include <QApplication>\n"_s},
    {u"boites-hors-de-dialogues"_s, u"src/app/ui/A.cpp"_s,
     u"QMessageBox::warning(this, a, b);\n"_s},
    {u"boites-hors-de-dialogues"_s, u"src/map/ui/A.cpp"_s,
     u"auto f = QFileDialog::getOpenFileName();\n"_s},
    {u"boites-hors-de-dialogues"_s, u"src/app/main.cpp"_s, u"QInputDialog d;\n"_s},
    {u"expressions-sur-sql"_s, u"src/jet/A.cpp"_s, u"QRegularExpression e;\n"_s},
    {u"expressions-sur-sql"_s, u"src/query/A.cpp"_s, u"std::regex e;\n"_s},
    {u"include-vers-le-haut"_s, u"src/jet/A.cpp"_s, u"#include \"data/Dictionary.h\"\n"_s},
    {u"include-vers-le-haut"_s, u"src/jet/A.cpp"_s, u"#include \"platform/Clock.h\"\n"_s},
    {u"include-vers-le-haut"_s, u"src/editing/A.cpp"_s, u"#include \"images/Photo.h\"\n"_s},
    {u"include-vers-le-haut"_s, u"src/query/ui/A.cpp"_s, u"#include \"app/Session.h\"\n"_s},
    {u"logique-vers-fenetre"_s, u"src/app/Session.cpp"_s, u"#include \"app/ui/MainWindow.h\"\n"_s},
    {u"dossier-sans-etage"_s, u"src/outils/A.cpp"_s, u"int a;\n"_s},
    {u"nom-non-ascii"_s, u"src/reference/Cl_Localit\u00e9.h"_s, u"int a;\n"_s},
    {u"arg-en-chaine"_s, u"src/app/A.cpp"_s, u"auto t = f.arg(a(1)).ar"_s + u"g(b);\n"_s},
    {u"arg-en-chaine"_s, u"src/app/A.cpp"_s, u"auto t = f.arg(a)\n             .arg(b);\n"_s},
    {u"catch-vide"_s, u"src/app/A.cpp"_s, u"try { f(); } catch (const jet::Error&) {\n}\n"_s},
    {u"catch-vide"_s, u"src/app/A.cpp"_s, u"try { f(); } catch (...) { /* nothing */ }\n"_s},
    {u"mots-du-plan"_s, u"src/app/A.cpp"_s, u"// as Part"_s + u" 2.1 says\n"_s},
    {u"mots-du-plan"_s, u"docs/A.md"_s, u"See the spe"_s + u"cification.\n"_s},
    {u"mots-du-plan"_s, u"README.md"_s, u"design.m"_s + u"d, section 1\n"_s},
    {u"mots-du-plan"_s, u"tests/jet/A.cpp"_s, u"// made for issue"_s + u" 2\n"_s},
};

const QList<Case> good{
    {{}, u"src/jet/Store.cpp"_s, u"#include <sqlite3.h>\n#include \"jet/Error.h\"\n"_s},
    {{}, u"src/jet/A.cpp"_s, u"#include <QString>\n// no QRegularExpression here\n"_s},
    {{}, u"src/app/ui/A.cpp"_s, u"#include <QTableView>\n#include \"query/ui/Grille.h\"\n"_s},
    {{}, u"src/app/main.cpp"_s, u"#include <QApplication>\n#include \"app/ui/MainWindow.h\"\n"_s},
    {{}, u"src/platform/ui/A.cpp"_s, u"#include <QMessageBox>\nQMessageBox box;\n"_s},
    {{}, u"src/data/A.cpp"_s, u"#include \"data/Modules.h\"\n#include \"jet/Database.h\"\n"_s},
    {{}, u"src/data/A.cpp"_s, u"auto t = f.arg(a, b) + g.arg(c);\n"_s},
    {{}, u"src/data/A.cpp"_s, u"try { f(); } catch (const jet::Error& e) { qWarning() << e; }\n"_s},
    {{}, u"src/map/A.cpp"_s, u"// The GPX speci"_s + u"fication orders its elements.\n"_s},
    {{}, u"docs/A.md"_s, u"Part of it, version 1.1.\n"_s},
};

} // namespace

TEST(HouseRules, RefuseWhatTheyAreFor)
{
    for (const Case& c : bad) {
        EXPECT_EQ(rulesBroken(c.path, c.text), QStringList{c.rule}) << c.path.toStdString() << "\n"
                                                                    << c.text.toStdString();
    }
}

TEST(HouseRules, EachRuleHasACase)
{
    QStringList tried;
    for (const Case& c : bad) {
        tried << c.rule;
    }
    for (const QString& rule : house::ruleNames()) {
        EXPECT_TRUE(tried.contains(rule)) << rule.toStdString();
    }
}

TEST(HouseRules, LetGoodCodePass)
{
    for (const Case& c : good) {
        EXPECT_EQ(rulesBroken(c.path, c.text), QStringList()) << c.path.toStdString() << "\n"
                                                              << c.text.toStdString();
    }
}

TEST(HouseRules, CommentsAreBlankedAndTextsKept)
{
    const QString text =
        u"a; // \"x\nb = \"// no\"; /* c\n d */ e = u'\\''; f = 1'000; R\"(/* \")\"; // g"_s;
    const QString code = house::withoutComments(text);
    EXPECT_EQ(code.size(), text.size());
    EXPECT_EQ(code.simplified(), u"a; b = \"// no\"; e = u'\\''; f = 1'000; R\"(/* \")\";"_s);
    EXPECT_EQ(code.count(u'\n'), text.count(u'\n'));
}

TEST(House, IsKept)
{
    static const QStringList examined{u"*.h"_s,   u"*.cpp"_s, u"*.md"_s, u"*.sh"_s,    u"*.cmake"_s,
                                      u"*.txt"_s, u"*.sql"_s, u"*.1"_s,  u"Makefile"_s};
    int files = 0;
    for (const QString& top : {u"src"_s, u"tests"_s, u"bench"_s, u"addins"_s, u"docs"_s,
                               u"scripts"_s, u"cmake"_s, u"packaging"_s, u"demo"_s}) {
        for (QDirIterator it(root() + u'/' + top, QDir::Files, QDirIterator::Subdirectories);
             it.hasNext();) {
            const QString path = it.next();
            const QString relative = path.mid(root().size() + 1);
            const bool readable = QDir::match(examined, it.fileName());
            ++files;
            for (const auto& finding :
                 house::examine(relative, readable ? contents(path) : QString(), widgetHeaders())) {
                ADD_FAILURE() << finding.path.toStdString() << ":" << finding.line << ": "
                              << finding.rule.toStdString() << ": " << finding.text.toStdString();
            }
        }
    }
    EXPECT_GT(files, 20) << "nothing was examined: " << root().toStdString();
}
