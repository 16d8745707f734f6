#include "app/ui/PictureDesk.h"

#include "app/Session.h"
#include "app/ui/EditorDesk.h"
#include "app/ui/Icons.h"
#include "app/ui/PictureTab.h"
#include "images/ImagePaths.h"
#include "images/ThumbnailLoader.h"
#include "images/ui/FoldersDialog.h"
#include "query/ui/PictureMode.h"

#include <QFileInfo>

namespace app {

using namespace Qt::StringLiterals;

namespace {

const QString titleFolders = u"Dossiers des images"_s;

} // namespace

query::PictureWorld pictureWorld(Workplace& place)
{
    Session& session = place.session();
    return {place.thumbnails(), [&session] { return images::imageFolders(session.properties()); }};
}

PictureDesk::PictureDesk(Workplace& place, EditorDesk& editor) : Desk(place), m_editor(editor)
{
    m_editor.pictureNames = [this](const QStringList& files) { return namesOf(files); };
    m_editor.makePictures = [&place](QWidget* owner) { return new PictureTab(place, owner); };
}

void PictureDesk::install(QMenuBar& bar, TreeCommands&)
{
    auto* menu = bar.findChild<QMenu*>(u"menuDonnees"_s);
    m_action = new QAction(themeIcon(u"folder-pictures"_s), u"&Dossiers des images…"_s, menu);
    m_action->setObjectName(u"imagePaths"_s);
    m_action->setStatusTip(u"Choisir les dossiers dans lesquels les images sont cherchées"_s);
    m_action->setEnabled(false);
    connect(m_action, &QAction::triggered, this, &PictureDesk::editFolders);
    if (menu)
        menu->addAction(m_action);
}

void PictureDesk::projectOpened()
{
    // Windows that outlive this project keep the loader that they have.
    auto loader = std::make_shared<images::ThumbnailLoader>(session().path(), session().surroundings().clock);
    loader->setFolders(images::imageFolders(session().properties()));
    place().setThumbnails(std::move(loader));
    showBusy(false);
}

void PictureDesk::projectClosing()
{
    place().setThumbnails({});
    m_action->setEnabled(false);
}

void PictureDesk::showBusy(bool busy)
{
    m_action->setEnabled(!busy && isOpen() && !session().readOnly());
}

void PictureDesk::editFolders()
{
    if (!isOpen() || place().runner().isRunning())
        return;
    auto* dialog = new images::FoldersDialog(images::imageFolders(session().properties()), place().dialogues(),
                                             &place().window());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, [this, dialog] { takeFolders(dialog->folders()); });
    dialog->open();
}

QStringList PictureDesk::namesOf(const QStringList& files)
{
    QStringList folders = images::imageFolders(session().properties());
    QStringList outside;
    for (const QString& file : files) {
        const QString folder = QFileInfo(file).absolutePath();
        if (QFileInfo(file).isAbsolute() && images::storedName(file, folders) == file && !folders.contains(folder)
            && !outside.contains(folder))
            outside << folder;
    }
    const QString question = u"Le répertoire "_s + outside.join(u", "_s)
                             + u" n'est pas déclaré pour la recherche des images.\nVoulez-vous l'ajouter ?"_s;
    if (!outside.isEmpty() && !session().readOnly() && !place().runner().isRunning()
        && place().dialogues().confirm(question, titleFolders)) {
        folders += outside;
        images::setImageFolders(session().properties(), folders);
        place().thumbnails()->setFolders(folders);
    }
    QStringList names;
    for (const QString& file : files)
        names << images::storedName(file, folders);
    return names;
}

void PictureDesk::takeFolders(const QStringList& folders)
{
    if (!isOpen())
        return;
    if (place().runner().isRunning()) {
        connect(
            &place().runner(), &platform::TaskRunner::finished, this, [this, folders] { takeFolders(folders); },
            Qt::ConnectionType(Qt::QueuedConnection | Qt::SingleShotConnection));
        return;
    }
    try {
        if (folders == images::imageFolders(session().properties()))
            return;
        images::setImageFolders(session().properties(), folders);
        place().thumbnails()->setFolders(folders);
        place().written({}); // pictures may be found now, wherever they are shown
    } catch (const jet::Error& error) {
        place().fail(titleFolders, error.description());
    }
}

} // namespace app
