// Pictures of the record editor: its modes, and what it says of a record.
#include "app/Session.h"
#include "app/ui/EditorDesk.h"
#include "app/ui/Photographer.h"
#include "data/FieldType.h"
#include "editing/ui/Listes.h"
#include "editing/ui/RecordEditorWindow.h"
#include "jet/Recordset.h"

#include <QApplication>
#include <QPainter>

namespace app {

using namespace Qt::StringLiterals;
using editing::IndividualEditing;
using editing::RecordEditorWindow;

namespace {

/// The module with the most kinds of fields, of those that have records.
QString richestModule(const Session& session)
{
    QString richest;
    qsizetype most = 0;
    for (const data::ModuleRecord& module : session.modules()) {
        QSet<int> kinds;
        for (const data::FieldRecord& field : module.fields)
            kinds << field.type;
        const jet::TableDef* table = session.database().schema().table(module.name);
        if (table && kinds.size() > most
            && !session.database().OpenRecordset(module.name, jet::RecordsetType::Table)->EOF_()) {
            most = kinds.size();
            richest = module.name;
        }
    }
    return richest;
}

QList<qint32> firstIds(const Session& session, const QString& module)
{
    QList<qint32> ids;
    const auto rows = session.database().OpenRecordset(module, jet::RecordsetType::Table);
    for (; !rows->EOF_() && ids.size() < 20; rows->MoveNext())
        ids << rows->Value(u"ID "_s + module).toInt();
    return ids;
}

editing::FieldControl* controlOf(RecordEditorWindow& window, editing::EditedRecord& record, int type)
{
    for (const auto& field : *record.form) {
        if (field->ctype() == type)
            return window.pane().control(*field);
    }
    return nullptr;
}

/// The window with the list that hangs over it.
void takeWithList(Photographer& photographer, const QString& name, RecordEditorWindow& window)
{
    QPixmap whole = window.grab();
    if (QWidget* list = QApplication::activePopupWidget()) {
        QPainter painter(&whole);
        painter.drawPixmap(window.mapFromGlobal(list->pos()), list->grab());
    }
    QLabel picture;
    picture.setPixmap(whole);
    picture.resize(whole.size());
    photographer.take(name, picture);
}

} // namespace

void EditorDesk::photographModes(Photographer& photographer)
{
    RecordEditorWindow& editor = *window();
    place().editRecords(IndividualEditing::levelPath(data::moduleIndividus, firstIds(session(), data::moduleIndividus)));
    photographer.settle();
    photographer.take(u"fiche"_s, editor);
    editor.actions().modeVertical->trigger();
    photographer.settle();
    photographer.take(u"fiche-verticale"_s, editor);
    editor.actions().modeCondensed->trigger();
    photographer.settle();
    photographer.take(u"fiche-condensee"_s, editor);
    editor.actions().modeSingle->trigger();
}

void EditorDesk::photographStates(Photographer& photographer)
{
    RecordEditorWindow& editor = *window();
    IndividualEditing& editing = editor.editing();
    const QString module = richestModule(session());
    if (module.isEmpty())
        return;
    place().editRecords(IndividualEditing::levelPath(module, firstIds(session(), module)));
    editing::EditedRecord& record = *editing.current();
    photographer.settle();
    photographer.take(u"fiche-champs"_s, editor);
    if (auto* list = controlOf(editor, record, data::ListeSimple)) {
        list->editor()->setFocus();
        list->openList();
        photographer.settle();
        takeWithList(photographer, u"fiche-liste"_s, editor);
        if (QWidget* popup = QApplication::activePopupWidget())
            popup->close();
    }
    record.locked = true; // as it is shown, not in the file
    editing.select(record.key);
    photographer.settle();
    photographer.take(u"fiche-verrouillee"_s, editor);
    record.locked = false;
    editing.select(record.key);
    if (auto* date = controlOf(editor, record, data::Date))
        date->setValue(u"hier"_s);
    if (auto* number = controlOf(editor, record, data::Réel))
        number->setValue(u"-12"_s);
    photographer.settle();
    photographer.take(u"fiche-erreurs"_s, editor);
}

} // namespace app
