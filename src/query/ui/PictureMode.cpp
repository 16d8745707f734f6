#include "query/ui/PictureMode.h"

#include "data/Cancellable.h"
#include "data/Modules.h"
#include "images/ThumbnailLoader.h"
#include "jet/Recordset.h"
#include "jet/SqlText.h"
#include "query/QueryDefinition.h"
#include "query/StatementParts.h"

#include <QPointer>
#include <QVBoxLayout>
#include <algorithm>

namespace query {

using namespace Qt::StringLiterals;

namespace {

const QString identifierPrefix = u"[ID "_s;
constexpr qint64 rowsAtOnce = 2000;

/// The module whose records `ChpID` identifies, by the name of its column.
QString moduleOf(const QString& statement)
{
    for (const StatementColumn& column : SQLHeader(statement)) {
        const qsizetype at = column.expression.lastIndexOf(identifierPrefix);
        if (column.alias == u"ChpID" && at >= 0)
            return column.expression.mid(at + identifierPrefix.size()).section(u']', 0, 0);
    }
    return {};
}

/// The individual of each picture shown. Identifiers lie close together, so that their range is read at once.
QHash<qint32, qint32> readOwners(jet::Database& database, const QString& module, const images::PictureRows& pictures)
{
    QHash<qint32, qint32> owners;
    if (module.isEmpty() || pictures.count() == 0)
        return owners;
    qint32 least = pictures.id(0), most = least;
    for (qsizetype i = 0; i < pictures.count(); ++i) {
        least = std::min(least, pictures.id(i));
        most = std::max(most, pictures.id(i));
    }
    const QString identifier = jet::nom(u"ID "_s + module);
    const auto rows = database.OpenRecordset(u"SELECT "_s + identifier + u",[ID Individus] FROM "_s + jet::nom(module)
                                             + u" WHERE "_s + identifier + u" BETWEEN "_s + QString::number(least)
                                             + u" AND "_s + QString::number(most));
    while (!rows->EOF_()) {
        for (const std::vector<QVariant>& row : rows->GetRows(rowsAtOnce))
            owners.insert(row[0].toInt(), row[1].toInt());
    }
    return owners;
}

} // namespace

struct PictureMode::Loaded {
    QString module;
    std::shared_ptr<images::PictureRows> pictures;
    QHash<qint32, qint32> individuOf;

    qint32 owner(qint32 picture) const { return module == data::moduleIndividus ? picture : individuOf.value(picture); }
};

PictureMode::PictureMode(ResultSource& source, PictureWorld world, platform::TaskRunner& runner, QWidget* parent)
    : ResultMode(source, parent), m_runner(runner), m_world(std::move(world)), m_thumbnails(new images::Thumbnails(this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_thumbnails);
    setFocusProxy(m_thumbnails);
    m_thumbnails->setLoader(m_world.loader);
    m_thumbnails->setReader([this](const QString& statement, const auto& done) { read(statement, done); });
    connect(m_thumbnails, &images::Thumbnails::selectionChanged, this, &ResultMode::selectionChanged);
    connect(m_thumbnails, &images::Thumbnails::activated, this, &PictureMode::activate);
    connect(m_thumbnails, &images::Thumbnails::failed, this, &ResultMode::failed);
    connect(m_thumbnails, &images::Thumbnails::shown, this, [this] {
        select(std::exchange(m_wanted, {}));
        Q_EMIT stateChanged();
    });
}

PictureMode::~PictureMode() = default;

QString PictureMode::key() const
{
    return modePicture;
}

void PictureMode::rowsReplaced()
{
    m_thumbnails->setSQL(source().statement(modePicture));
    load();
    // No picture field: the query has nothing to show here.
    if (m_thumbnails->SQL().isEmpty())
        m_thumbnails->setMessage(u"Aucun champ de la requête ne mène à une image"_s);
}

void PictureMode::valuesChanged(const QStringList& modules)
{
    const bool concerned = modules.isEmpty() || (m_loaded && modules.contains(m_loaded->module))
                           || modules.contains(source().module());
    if (concerned && m_loaded) {
        m_wanted = selection();
        load();
    }
}

void PictureMode::load()
{
    m_world.loader->setFolders(m_world.folders());
    m_thumbnails->Refresh();
}

void PictureMode::read(const QString& statement, const images::Thumbnails::Done& done)
{
    auto loaded = std::make_shared<Loaded>();
    loaded->module = moduleOf(statement);
    jet::Database& database = source().database();
    const QPointer<PictureMode> self(this);
    m_runner.start({[loaded, statement, &database](platform::Progression& progression) {
                        const data::Cancellable cancellable(database, progression);
                        loaded->pictures = images::readPictures(database, statement, progression);
                        if (loaded->module != data::moduleIndividus)
                            loaded->individuOf = readOwners(database, loaded->module, *loaded->pictures);
                    },
                    [self, loaded, done](std::exception_ptr failure) {
                        if (!self)
                            return;
                        try {
                            if (failure)
                                std::rethrow_exception(failure);
                            self->m_loaded = loaded;
                            self->m_thumbnails->setNomModule(loaded->module);
                            done(loaded->pictures, {});
                        } catch (const jet::Error& error) {
                            done({}, error.description());
                        }
                    },
                    [&database] { database.Interrupt(); }, u"Lecture des images"_s});
}

// --- Selection -----------------------------------------------------------------------------------

void PictureMode::setSelection(const ResultSelection& selection)
{
    // A selection that comes while pictures are read is that of the rows, not of what is still shown.
    m_wanted = isLoading() ? selection : ResultSelection();
    select(selection);
}

void PictureMode::select(const ResultSelection& selection)
{
    if (!m_loaded)
        return;
    QList<qint32> pictures;
    if (m_loaded->module == source().module() && !selection.records.isEmpty()) {
        pictures = selection.records;
    } else {
        const QList<qint32>& known = selection.individuals.isEmpty() && source().module() == data::moduleIndividus
                                         ? selection.records
                                         : selection.individuals;
        const QSet<qint32> individuals(known.begin(), known.end());
        for (qsizetype i = 0; !individuals.isEmpty() && i < m_loaded->pictures->count(); ++i) {
            const qint32 picture = m_loaded->pictures->id(i);
            if (individuals.contains(m_loaded->owner(picture)))
                pictures << picture;
        }
    }
    m_thumbnails->RefreshSelectedItems(pictures);
}

ResultSelection PictureMode::recordsOf(const QList<qint32>& pictures) const
{
    ResultSelection found;
    if (!m_loaded)
        return found;
    if (m_loaded->module == source().module())
        found.records = pictures;
    QSet<qint32> known;
    for (const qint32 picture : pictures) {
        const qint32 individual = m_loaded->owner(picture);
        if (individual > 0 && !known.contains(individual)) {
            known.insert(individual);
            found.individuals << individual;
        }
    }
    return found;
}

ResultSelection PictureMode::selection() const
{
    return recordsOf(m_thumbnails->selectedIds());
}

void PictureMode::activate(qint32 id)
{
    const ResultSelection record = recordsOf({id});
    if (!record.isEmpty())
        Q_EMIT activated(record);
}

// --- Commands ------------------------------------------------------------------------------------

bool PictureMode::can(platform::TabCommand command) const
{
    using enum platform::TabCommand;
    if (command == SelectAll)
        return m_loaded && m_loaded->pictures->count() > 0;
    return command == Refresh && !m_runner.isRunning();
}

void PictureMode::run(platform::TabCommand command)
{
    using enum platform::TabCommand;
    if (command == SelectAll) {
        m_thumbnails->SelectAll();
    } else if (command == Refresh) {
        m_wanted = selection();
        load();
    }
}

} // namespace query
