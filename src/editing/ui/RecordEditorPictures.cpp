// The tab "Viewer" of the record editor.
#include "editing/ui/RecordEditorWindow.h"

#include "data/FieldType.h"

namespace editing {

using namespace Qt::StringLiterals;

namespace {

Cl_Edition* firstOf(const QList<Cl_Edition*>& fields, int type)
{
    for (Cl_Edition* field : fields) {
        if (field->ctype() == type)
            return field;
    }
    return nullptr;
}

/// The fields that take the facts over, with what each takes.
QList<std::pair<Cl_Edition*, QVariant>> targets(const QList<Cl_Edition*>& fields, const PictureFacts& facts)
{
    QList<std::pair<Cl_Edition*, QVariant>> found;
    Cl_Edition* date = firstOf(fields, data::Date);
    if (date && facts.date.isValid())
        found << std::pair(date, facts.date);
    Cl_Edition* longitude = firstOf(fields, data::Longitude);
    Cl_Edition* latitude = firstOf(fields, data::Latitude);
    // Half a position is none.
    if (longitude && latitude && facts.longitude.isValid() && facts.latitude.isValid())
        found << std::pair(longitude, facts.longitude) << std::pair(latitude, facts.latitude);
    return found;
}

} // namespace

void RecordEditorWindow::makePictureTab()
{
    m_pictures = m_around.makePictures ? m_around.makePictures(this) : nullptr;
    QWidget* page = m_pictures;
    if (!page)
        page = new QWidget(this);
    page->setObjectName(u"Viewer"_s);
    m_tabs->insertTab(1, page, u"Image"_s);
    m_tabs->setTabVisible(1, m_pictures);
    if (!m_pictures)
        return;
    const auto writable = [this] {
        QList<Cl_Edition*> fields;
        EditedRecord* record = m_editing.current();
        for (int i = 0; record && i < m_editing.form(*record).Count(); ++i) {
            Cl_Edition* field = m_editing.form(*record).Item(i);
            if (!m_editing.isReadOnly(*record, *field))
                fields << field;
        }
        return fields;
    };
    const auto captions = [](const auto& targets) {
        QStringList names;
        for (const auto& target : targets)
            names << target.first->Caption();
        return names;
    };
    m_pictures->fitting = [=](const PictureFacts& facts) { return captions(targets(writable(), facts)); };
    m_pictures->offer = [=, this](const PictureFacts& facts) {
        const auto filled = targets(writable(), facts);
        for (const auto& [field, value] : filled)
            m_editing.type(*m_editing.current(), *field, value);
        return captions(filled);
    };
    connect(m_tabs, &QTabWidget::currentChanged, this, &RecordEditorWindow::showPictures);
}

PicturedRecord RecordEditorWindow::pictured() const
{
    PicturedRecord seen;
    EditedRecord* record = m_editing.current();
    if (!record)
        return seen;
    seen.module = record->module;
    seen.id = record->id;
    seen.individu = m_editing.CurrentIndividu();
    seen.readOnly = record->locked;
    for (const auto& field : m_editing.form(*record)) {
        const QString file = field->ctype() == data::Image ? field->value().toString() : QString();
        if (!file.isEmpty())
            seen.pictures << PicturedRecord::Picture{field->champ(), field->Caption(), file};
    }
    return seen;
}

/// Pictures are read only while their tab is seen.
void RecordEditorWindow::showPictures()
{
    if (!m_pictures)
        return;
    const PicturedRecord seen = pictured();
    m_tabs->setTabEnabled(m_tabs->indexOf(m_pictures), !seen.pictures.isEmpty());
    const PicturedRecord shown = m_tabs->currentWidget() == m_pictures ? seen : PicturedRecord();
    if (shown == m_seen)
        return;
    m_seen = shown;
    m_pictures->showRecord(shown);
}

} // namespace editing
