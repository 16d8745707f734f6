#include "images/Imagettes.h"

#include "data/FieldType.h"
#include "images/ImagePaths.h"
#include "jet/Recordset.h"
#include "jet/SqlText.h"

#include <QSet>
#include <QThreadPool>

namespace images {

using namespace Qt::StringLiterals;

namespace {

/// Pictures between two writings of the cache, and two looks at the wish to stop.
constexpr qsizetype portion = 32;

struct Wanted {
    QString name;
    QString path;
};

QList<Thumbnail> makeAll(QThreadPool& pool, const QList<Wanted>& wanted)
{
    QList<Thumbnail> made(wanted.size());
    for (qsizetype i = 0; i < wanted.size(); ++i)
        pool.start([&wanted, i, target = &made[i]] { *target = makeThumbnail(wanted[i].name, wanted[i].path); });
    pool.waitForDone();
    return made;
}

void take(FillReport& report, const QList<Thumbnail>& made)
{
    for (const Thumbnail& one : made) {
        if (one.jpeg.isEmpty())
            report.failures << one.failure;
        else
            ++report.made;
    }
}

} // namespace

QStringList projectPictures(jet::Database& database, const QList<data::ModuleRecord>& modules)
{
    QStringList names;
    QSet<QString> known;
    for (const data::ModuleRecord& module : modules) {
        const jet::TableDef* table = database.schema().table(module.name);
        for (const data::FieldRecord& field : module.fields) {
            if (field.type != data::Image || !table || !table->field(field.column))
                continue;
            const QString column = jet::nom(field.column);
            const auto rows = database.OpenRecordset(u"SELECT DISTINCT "_s + column + u" FROM "_s + jet::nom(module.name)
                                                     + u" WHERE "_s + column + u" IS NOT NULL"_s);
            for (; !rows->EOF_(); rows->MoveNext()) {
                const QString name = rows->Value(0).toString();
                if (!name.isEmpty() && !known.contains(name)) {
                    known.insert(name);
                    names << name;
                }
            }
        }
    }
    return names;
}

FillReport fillThumbnails(ThumbnailCache& cache, const QStringList& names, const QStringList& folders,
                          platform::Progression& progression)
{
    FillReport report;
    QThreadPool pool;
    QList<Wanted> wanted;
    int shown = -1;
    const auto flush = [&] {
        const QList<Thumbnail> made = makeAll(pool, wanted);
        wanted.clear();
        cache.store(made);
        take(report, made);
    };
    for (qsizetype i = 0; i < names.size() && !report.cancelled; ++i) {
        const QString path = findPicture(names[i], folders);
        if (path.isEmpty())
            report.failures << pictureMissing(names[i]);
        else if (cache.holds(names[i], path))
            ++report.kept;
        else
            wanted << Wanted{names[i], path};
        if (wanted.size() >= portion)
            flush();
        const int percent = int((i + 1) * 100 / names.size());
        if (percent != shown)
            progression.step(u"Imagettes : "_s + QString::number(i + 1) + u" / "_s + QString::number(names.size()), percent);
        shown = percent;
        report.cancelled = progression.cancelled();
    }
    if (!wanted.isEmpty())
        flush();
    return report;
}

} // namespace images
