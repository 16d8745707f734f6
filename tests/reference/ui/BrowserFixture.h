// A small project with what the trees and browsers of the reference lists work with.
#pragma once

#include "reference/ReferenceFixture.h"
#include "app/References.h"
#include "jet/SqlText.h"
#include "reference/ui/Chooser.h"
#include "reference/ui/ReferenceWorld.h"
#include "support/Warnings.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>

class KeptAddresses : public reference::AddressOpener {
public:
    QStringList addresses;
    void open(const QString& address) override { addresses << address; }
};

/// 1 Fagaceae > 2 Quercus > 3 robur > 4 var. alba, 5 petraea; 6 Fagus > 7 sylvatica; 8 Rosaceae > 9 Rosa.
/// Localities: 1 Gabon > 2 Makokou > 3 Plateau; 4 France; 5 a map in Gabon. Collectors: Aubréville (CTFT), Uma, Zoé (MNHN).
/// Individual 1: Quercus robur, Makokou, Aubréville; 2: Fagus sylvatica.
class BrowserTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        project.create();
        project.session.setForm(&form);
        fill();
        app::References& lists = project.session.references();
        chooser = std::make_unique<reference::Chooser>([this] { return world; });
        world = std::make_shared<reference::ReferenceWorld>(reference::ReferenceWorld{
            project.db(), lists.taxa(), lists.places(), lists.people(), lists.links(), project.session.properties(),
            project.dialogues, form, lists.context(), opener,
            reference::Referring(project.db(), {{QStringLiteral("Individus"), QStringLiteral("ID Localités"), data::Localité},
                                                {QStringLiteral("Individus"), QStringLiteral("ID Collecteurs"), data::Botaniste},
                                                {QStringLiteral("Déterminations"), QStringLiteral("ID Taxons"), data::Taxon}}),
            editing::ReferenceSearch(project.db()), editing::FieldInput(&project.db()), chooser.get()});
        world->showIndividuals = [this](const QString& title, const QList<qint32>& ids) {
            shown << title + QStringLiteral(": ") + jet::liste(ids);
        };
        world->written = [this](const QString& table) { written << table; };
    }
    void TearDown() override
    {
        EXPECT_TRUE(form.steps.empty());
        project.dialogues.verify();
    }

    void fill();
    /// Shows a widget as a window of its own, with the focus.
    template<typename Widget> Widget& open(Widget* made)
    {
        window.reset(made);
        made->resize(1000, 600);
        made->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(made));
        made->setFocus();
        return *made;
    }
    /// Names of the children that a tree shows under a row.
    static QStringList children(const QAbstractItemModel& model, const QModelIndex& parent = {})
    {
        QStringList names;
        for (int row = 0; row < model.rowCount(parent); ++row)
            names << model.index(row, 0, parent).data().toString();
        return names;
    }
    /// A picture of the widget, where the environment variable HERBORA_PICTURES names a folder.
    static void picture(QWidget& widget, const QString& name)
    {
        const QString folder = qEnvironmentVariable("HERBORA_PICTURES");
        if (!folder.isEmpty())
            widget.grab().save(folder + u'/' + name + QStringLiteral(".png"));
    }
    /// Does something in the dialog that opens next; the answer of what opened it comes back after that.
    static void inDialog(const std::function<void(QWidget&)>& work)
    {
        QTimer::singleShot(0, qApp, [work] {
            ASSERT_TRUE(QTest::qWaitFor([] { return QApplication::activeModalWidget(); }, 5000));
            work(*QApplication::activeModalWidget());
        });
    }

    support::TestProject project;
    ScriptedForm form;
    KeptAddresses opener;
    std::unique_ptr<reference::Chooser> chooser;
    std::shared_ptr<reference::ReferenceWorld> world;
    QStringList shown, written;
    std::unique_ptr<QWidget> window;
};
