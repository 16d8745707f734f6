// Pictures of the folders, the thumbnails and the viewer.
#include "app/Session.h"
#include "app/ui/Documents.h"
#include "app/ui/EditorDesk.h"
#include "app/ui/Photographer.h"
#include "app/ui/PictureDesk.h"
#include "app/ui/PictureTab.h"
#include "editing/IndividualEditing.h"
#include "editing/ui/RecordEditorWindow.h"
#include "images/ImagePaths.h"
#include "images/ThumbnailLoader.h"
#include "images/ui/FoldersDialog.h"
#include "jet/Recordset.h"
#include "query/ui/PictureMode.h"
#include "query/ui/QueryTab.h"

#include <QTabWidget>

namespace app {

using namespace Qt::StringLiterals;

namespace {

const QString imagesModule = u"Images"_s;
/// A segment across the middle of a picture, of a plausible plant.
constexpr float posedPixel = 0.0125F;

QList<qint32> somePictures(jet::Database& database)
{
    QList<qint32> ids;
    const auto rows = database.OpenRecordset(u"SELECT [ID Images] FROM [Images] WHERE [Fichier] IS NOT NULL ORDER BY [Fichier]"_s);
    for (; !rows->EOF_() && ids.size() < 50; rows->MoveNext())
        ids << rows->Value(0).toInt();
    return ids;
}

} // namespace

void PictureDesk::photograph(Photographer& photographer)
{
    if (!isOpen() || !session().database().schema().table(imagesModule))
        return;
    QStringList folders = images::imageFolders(session().properties());
    folders << u"/media/photos/2024"_s; // one that is not there
    images::FoldersDialog dialog(folders, place().dialogues(), &place().window());
    dialog.show();
    photographer.settle();
    photographer.take(u"dossiers-images"_s, dialog);
    dialog.hide();

    place().openQuery(data::moduleIndividus, 0);
    photographer.settle();
    if (auto* tab = qobject_cast<query::QueryTab*>(place().documents().current())) {
        tab->execute();
        photographer.settle([tab] { return tab->pane().hasResult() && tab->pane().isComplete(); });
        tab->actions()[u"definition"_s]->setChecked(false);
        tab->pane().setMode(u"picture"_s);
        auto* mode = tab->findChild<query::PictureMode*>();
        photographer.settle([this, mode] { return !mode || (!mode->isLoading() && place().thumbnails()->isIdle()); });
        if (mode)
            mode->thumbnails().grid().setCurrent(0);
        photographer.settle([this] { return place().thumbnails()->isIdle(); });
        photographer.take(u"imagettes"_s);
        tab->query().begin(query::QueryDefinition(tab->query().definition()), tab->query().NomQuery());
        place().documents().closeCurrent();
    }
    photographViewer(photographer);
}

void PictureDesk::photographViewer(Photographer& photographer)
{
    const QList<qint32> ids = somePictures(session().database());
    if (ids.isEmpty() || m_editor.window())
        return; // what somebody types in is no picture
    place().editRecords(editing::IndividualEditing::levelPath(imagesModule, ids));
    photographer.settle();
    editing::RecordEditorWindow* window = m_editor.window();
    auto* tab = window ? window->findChild<PictureTab*>() : nullptr;
    if (!tab)
        return;
    for (auto* tabs : window->findChildren<QTabWidget*>()) {
        if (tabs->indexOf(tab) >= 0)
            tabs->setCurrentWidget(tab);
    }
    photographer.settle([tab] { return !tab->isReading(); });
    images::Viewer& viewer = tab->viewer();
    const QSizeF size = viewer.canvas().picture().size;
    const QLineF segment(size.width() * 0.3, size.height() * 0.62, size.width() * 0.68, size.height() * 0.4);
    viewer.canvas().setSegment(segment, images::Viewer::distanceText(segment.length(), posedPixel));
    photographer.settle();
    photographer.take(u"image-mesuree"_s, *window);
    m_editor.projectClosing(); // its window goes; the editor is made anew at the next need
    m_editor.projectOpened();
}

} // namespace app
