#include "app/ui/ManualWindow.h"
#include "WindowFixture.h"

#include <QDirIterator>
#include <QListWidget>

using namespace Qt::StringLiterals;

namespace {

const QString folder = qEnvironmentVariable("HERBORA_SOURCE") + u"/docs/manuel"_s;

TEST(Manual, OpensAtThePageOfTheWidgetAndFollowsLinks)
{
    app::WindowState state({});
    app::ManualWindow manual(folder, state);
    QWidget window;
    window.setProperty(app::ManualWindow::pageProperty, u"securite"_s);
    QWidget inner(&window);
    EXPECT_EQ(app::ManualWindow::pageFor(&inner), u"securite"_s);
    EXPECT_EQ(app::ManualWindow::pageFor(nullptr), u"index"_s);

    manual.showPage(app::ManualWindow::pageFor(&inner));
    EXPECT_EQ(manual.page(), u"securite"_s);
    EXPECT_TRUE(manual.browser().toPlainText().contains(u"sauvegarde"_s));
    Q_EMIT manual.browser().anchorClicked(QUrl(u"premiers-pas.md"_s));
    EXPECT_EQ(manual.page(), u"premiers-pas"_s);
    manual.findChild<QAction*>(u"manualBack"_s)->trigger();
    EXPECT_EQ(manual.page(), u"securite"_s);
    manual.showPage(u"n'existe pas"_s);
    EXPECT_EQ(manual.page(), u"index"_s);
}

/// Every page is reached from the contents, every link and picture leads somewhere.
TEST(Manual, HasNoDeadLinks)
{
    app::WindowState state({});
    app::ManualWindow manual(folder, state);
    QStringList listed;
    auto* contents = manual.findChild<QListWidget*>(u"manualContents"_s);
    for (int row = 0; row < contents->count(); ++row)
        listed << contents->item(row)->data(Qt::UserRole).toString();
    ASSERT_GT(listed.size(), 10);

    const QStringList files = QDir(folder).entryList({u"*.md"_s}, QDir::Files);
    EXPECT_EQ(files.size(), listed.size());
    static const QRegularExpression link(u"\\]\\(([^)#]+)"_s);
    for (const QString& file : files) {
        EXPECT_TRUE(listed.contains(file.chopped(3))) << file.toStdString() << " is not in the contents";
        QFile page(folder + u'/' + file);
        ASSERT_TRUE(page.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(page.readAll());
        for (auto found = link.globalMatch(text); found.hasNext();) {
            const QString target = found.next().captured(1);
            EXPECT_TRUE(target.startsWith(u"http"_s) || QFile::exists(folder + u'/' + target))
                << file.toStdString() << " -> " << target.toStdString();
        }
    }
}

} // namespace
