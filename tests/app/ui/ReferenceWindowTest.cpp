// The browsers of the reference lists in the whole program, by the keyboard and with the mouse's own drag events.
#include "WindowFixture.h"

#include "app/ui/EditorDesk.h"
#include "editing/ui/FormDialog.h"
#include "editing/ui/RecordEditorWindow.h"
#include "jet/Recordset.h"
#include "reference/ui/LazyTreeModel.h"
#include "reference/ui/ReferenceBrowser.h"
#include "reference/ui/ReferenceTree.h"

#include <QDragEnterEvent>
#include <QMimeData>
#include <QPointer>
#include <QTimer>

namespace {

using namespace Qt::StringLiterals;
using platform::Answer;
using platform::BoxIcon;
using reference::ReferenceTree;

/// Taxa of the project: 1 Burseraceae > 2 Aucoumea > 3 klaineana, 4 vieja (a synonym of 3). Determination 2, of individual 1,
/// names 3. Localities: 1 Gabon > 2 Makokou.
class ReferenceWindow : public support::WindowTest {
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        makeProject();
        openProject();
    }
    template<typename DeskType> DeskType& desk()
    {
        for (const auto& one : window().desks()) {
            if (auto* found = qobject_cast<DeskType*>(one.get()))
                return *found;
        }
        throw std::logic_error("no such desk");
    }
    ReferenceTree& browse(const QString& command)
    {
        trigger(command);
        auto* browser = qobject_cast<reference::ReferenceBrowser*>(window().documents().current());
        auto* tree = browser ? dynamic_cast<ReferenceTree*>(&browser->control()) : nullptr;
        if (!tree)
            throw std::logic_error("no tree");
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window()));
        tree->setFocus();
        return *tree;
    }
    void key(ReferenceTree& tree, Qt::Key key, Qt::KeyboardModifiers with = Qt::NoModifier)
    {
        QTest::keyClick(&tree.tree(), key, with);
        settle();
    }
    using Look = std::function<void(editing::FormDialog&)>;
    /// Fills the form that opens next, by keys: Return after each value, until the button that ends it.
    static void fillNextForm(const QStringList& values, const Look& before = {})
    {
        auto* looking = new QTimer(qApp); // not a wait: the form may open in what a wait would run
        connectLook(*looking, values, before);
        looking->start(5);
    }
    static void connectLook(QTimer& looking, const QStringList& values, const Look& before)
    {
        QObject::connect(&looking, &QTimer::timeout, qApp, [&looking, values, before] {
            auto* dialog = qobject_cast<editing::FormDialog*>(QApplication::activeModalWidget());
            if (!dialog || !dialog->focusWidget() || !looking.isActive())
                return;
            looking.stop();
            looking.deleteLater();
            if (before)
                before(*dialog);
            fill(*dialog, values);
        });
    }
    static void fill(editing::FormDialog& dialog, const QStringList& values)
    {
        for (const QString& value : values) {
            QTest::keyClicks(dialog.focusWidget(), value);
            QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
        }
        for (int field = 0; field < 20 && dialog.focusWidget()->objectName() != u"valider"; ++field) {
            const bool lines = dialog.focusWidget()->inherits("QPlainTextEdit");
            QTest::keyClick(dialog.focusWidget(), Qt::Key_Return, lines ? Qt::ControlModifier : Qt::NoModifier);
        }
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
        EXPECT_FALSE(dialog.isVisible()) << dialog.focusWidget()->objectName().toStdString();
        if (dialog.isVisible())
            dialog.done(QDialog::Rejected);
    }
    /// Drags a row onto another one with the events that a drag sends; false when it was not taken.
    bool drag(ReferenceTree& tree, qint32 moved, qint32 target)
    {
        const std::unique_ptr<QMimeData> data(tree.model().mimeData({tree.model().locate(moved)}));
        const QModelIndex onto = tree.model().locate(target);
        for (QModelIndex above = onto.parent(); above.isValid(); above = above.parent())
            tree.tree().expand(above);
        tree.tree().scrollTo(onto);
        QWidget* viewport = tree.tree().viewport();
        const QPoint at = tree.tree().visualRect(onto).center();
        QDragEnterEvent enters(at, Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(viewport, &enters);
        QDragMoveEvent moves(at, Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(viewport, &moves);
        const bool taken = moves.isAccepted();
        QDropEvent drops(at, Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(viewport, &drops);
        QCoreApplication::processEvents();
        settle();
        return taken;
    }
    QStringList rows(const QString& statement)
    {
        QStringList found;
        const auto all = program->session().database().OpenRecordset(statement);
        for (; !all->EOF_(); all->MoveNext()) {
            QStringList cells;
            for (int column = 0; column < all->FieldCount(); ++column)
                cells << (all->Value(column).isValid() ? all->Value(column).toString() : u"∅"_s);
            found << cells.join(u'|');
        }
        return found;
    }
};

TEST_F(ReferenceWindow, AFloraGrowsMovesAndLosesAName)
{
    ReferenceTree& tree = browse(u"browseTaxa"_s);
    tree.tree().setCurrentIndex({});
    for (const QStringList& values : {QStringList{u"lauraceae"_s, u"Juss."_s}, QStringList{u"ocotea"_s, u"Aubl."_s},
                                      QStringList{u"Rubra"_s, u"Mez"_s}, QStringList{u"var. Alba"_s}}) {
        fillNextForm(values);
        key(tree, Qt::Key_N, Qt::ControlModifier); // under what is current: the row added last
    }
    EXPECT_EQ(rows(u"SELECT [Nom Complet],[Auteurs],[ID Famille],[ID Genre],[ID Espèce],[ID Infra] FROM Taxons WHERE [ID Taxons]>4 ORDER BY [ID Taxons]"_s),
              (QStringList{u"Lauraceae|Juss.|5|∅|∅|∅"_s, u"Ocotea|Aubl.|5|6|∅|∅"_s, u"Ocotea rubra|Mez|5|6|7|∅"_s,
                           u"Ocotea rubra var. alba|∅|5|6|7|8"_s}));
    EXPECT_EQ(tree.currentId(), 8);

    EXPECT_FALSE(drag(tree, 5, 2)) << "a family into a genus";
    dialogues.expectConfirm(u"Déplacer le Taxon \"Aucoumea klaineana\" dans le taxon \"Ocotea\" ?\r\n"_s,
                            u"Déplacement de taxons"_s, true, BoxIcon::Question, Answer::No);
    EXPECT_TRUE(drag(tree, 3, 6));
    EXPECT_EQ(rows(u"SELECT [Nom Complet],[ID Genre] FROM Taxons WHERE [ID Taxons]=3"_s), QStringList{u"Ocotea klaineana|6"_s});
    EXPECT_EQ(tree.model().locate(3).parent(), tree.model().locate(6));
    EXPECT_EQ(tree.currentId(), 3);

    fillNextForm({QString(), u"Dupont"_s, u"1999"_s}); // the accepted name is there already
    EXPECT_TRUE(drag(tree, 7, 3));
    EXPECT_EQ(rows(u"SELECT [ID Valid],[AuteurSynonymie],[DateSynonymie] FROM Taxons WHERE [ID Taxons]=7"_s),
              QStringList{u"3|Dupont|1999"_s});
    EXPECT_TRUE(tree.model().rowAt(tree.model().locate(7)).synonym);

    tree.showRow(3);
    dialogues.expectConfirm(u"Vous allez SUPPRIMER le Taxon \"Ocotea klaineana\"...!!!\rLa suppression d'un Taxon entraîne la suppression de tous les sous-taxons ainsi que la rupture définitive des liens\r\rSupprimer les Taxons sélectionnés ?"_s,
                            u"Suppression..."_s, true, BoxIcon::Stop);
    key(tree, Qt::Key_Delete);
    EXPECT_FALSE(tree.model().locate(3).isValid());
    EXPECT_EQ(rows(u"SELECT [ID Taxons] FROM Taxons WHERE [ID Valid] Is Not Null"_s), QStringList());
    EXPECT_FALSE(tree.model().rowAt(tree.model().locate(7)).synonym);
    EXPECT_FALSE(tree.model().rowAt(tree.model().locate(4)).synonym);

    // The record that named it still opens, says that the name is missing, and is as it was.
    window().place().editRecords(editing::IndividualEditing::levelPath(u"Déterminations"_s, {2}));
    settle();
    editing::RecordEditorWindow& editor = *desk<app::EditorDesk>().window();
    EXPECT_EQ(editor.editing().current()->key, u"2-Déterminations"_s);
    EXPECT_EQ(editor.findChild<QLineEdit*>(u"editeur-ID Taxons"_s)->text(), u"Indetermineae"_s);
    EXPECT_FALSE(editor.editing().ToSave());
    EXPECT_TRUE(editor.close());
    EXPECT_EQ(rows(u"SELECT [ID Taxons] FROM Déterminations WHERE [ID Déterminations]=2"_s), QStringList{u"3"_s});
    app::GridTab* grid = openRecords(u"Déterminations"_s);
    EXPECT_EQ(grid->model().rowCount(), 4);
}

TEST_F(ReferenceWindow, APlaceIsAddedWithoutPositionAndMovedWithAllThatLiesInIt)
{
    ReferenceTree& tree = browse(u"browsePlaces"_s);
    tree.showRow(0);
    fillNextForm({u"Afrique"_s});
    key(tree, Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(tree.currentId(), 3);
    dialogues.expectConfirm(u"Déplacer la Localité \"Gabon\" dans la Localité \"Afrique\" ?"_s, u"Déplacement de localités"_s,
                            true, BoxIcon::Question, Answer::No);
    EXPECT_TRUE(drag(tree, 1, 3));
    EXPECT_EQ(rows(u"SELECT [CodeRegion],[Nom Entier],[LongDD] FROM [Localités] ORDER BY [ID Localités]"_s),
              (QStringList{u"3/1|Afrique - Gabon|11.5"_s, u"3/1/2|Gabon - Makokou|12.8667"_s, u"3|Afrique|0"_s}));
    // The grid of the individuals follows.
    app::GridTab* grid = openRecords(u"Individus"_s);
    EXPECT_EQ(shown(*grid, {u"Localité"_s}), (QStringList{u"Gabon - Makokou"_s, u"Afrique - Gabon"_s, QString()}));
}

TEST_F(ReferenceWindow, ANameIsAddedFromARecordWithoutLeavingIt)
{
    window().place().editRecords(editing::IndividualEditing::levelPath(u"Déterminations"_s, {2}));
    settle();
    editing::RecordEditorWindow& editor = *desk<app::EditorDesk>().window();
    const QPointer<QLineEdit> line = editor.findChild<QLineEdit*>(u"editeur-ID Taxons"_s);
    line->setFocus();
    line->selectAll();
    QTest::keyClicks(line, u"Aucoumea rubra"_s);
    QWidget* names = QApplication::activePopupWidget();
    ASSERT_TRUE(names);
    QString genus;
    fillNextForm({QString(), u"Mez"_s}, [&](editing::FormDialog& form) {
        genus = form.findChild<QLineEdit*>(u"editeur-[ID Genre]"_s)->text();
        // What was read elsewhere meanwhile is not read again under the hand.
        window().place().written({u"Individus"_s});
        QCoreApplication::processEvents();
    });
    QTest::keyClick(names, Qt::Key_Down);
    QTest::keyClick(names, Qt::Key_Return);
    EXPECT_EQ(genus, u"Aucoumea"_s);
    const auto chosen = [&] { return editor.editing().current()->form->Item(u"ID Taxons"_s)->value().toInt(); };
    EXPECT_EQ(chosen(), 5);
    // It stays through the reading that follows.
    EXPECT_TRUE(QTest::qWaitFor([&] { return !line; }, 5000));
    EXPECT_EQ(chosen(), 5);
    EXPECT_EQ(editor.findChild<QLineEdit*>(u"editeur-ID Taxons"_s)->text(), u"Aucoumea rubra"_s);
    EXPECT_EQ(rows(u"SELECT [Nom Complet],[Auteurs],[ID Genre] FROM Taxons WHERE [ID Taxons]>4"_s), QStringList{u"Aucoumea rubra|Mez|2"_s});
    dialogues.expect({u"Voulez-vous enregistrez les modifications apportées à la propriété < Détermination - N° 2 >"_s,
                      u"Enregistrements des propriétés"_s, BoxIcon::Question, platform::BoxButtons::YesNoCancel, Answer::Yes},
                     Answer::No);
    EXPECT_TRUE(editor.close());
}

} // namespace
