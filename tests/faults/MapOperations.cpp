#include "MapOperations.h"

#include "Project.h"
#include "app/References.h"
#include "jet/Recordset.h"
#include "map/Exports.h"
#include "platform/ReplaceFile.h"

#include <QFile>
#include <stdexcept>

namespace faults {

using namespace Qt::StringLiterals;

namespace {

const QString projectFile = u"projet.hbx"_s;
const QString pointsFile = u"points.kml"_s;

/// Types the coordinates of two marks.
class CalibrationForm : public editing::FormDialogue {
public:
    bool edit(const QString&, editing::Cl_Editions& form,
              const std::function<bool(editing::Cl_Editions&)>& save) override
    {
        const double values[] = {164, -20, 168, -22};
        for (int i = 0; i < 4; ++i) {
            form.Item(i)->setValue(values[i]);
        }
        return save(form);
    }
};

QString projectState(const QString& folder)
{
    return fingerprint(folder + u'/' + projectFile);
}

void reopen(const QString& folder)
{
    Workplace place(folder);
    if (!place.open()) {
        throw std::runtime_error("le projet ne s'ouvre plus");
    }
    place.session().close();
}

bool withPlaces(const QString& folder,
                const std::function<bool(reference::Cl_Localité&)>& work)
{
    Workplace place(folder);
    if (!place.open()) {
        return false;
    }
    const bool done = work(place.session().references().places());
    place.session().close();
    return done;
}

bool addMap(const QString& folder)
{
    return withPlaces(folder, [](reference::Cl_Localité& places) {
        return places.AddCarte(0, u"Carte"_s, {163, -19, 169, -23}, u"carte.png"_s) > 0;
    });
}

void prepareMap(const QString& folder)
{
    makeProject(folder);
    addMap(folder);
}

bool calibrate(const QString& folder)
{
    qint32 map = 0;
    withProject(folder, [&map](jet::Database& database) {
        map = database.OpenRecordset(u"SELECT [ID Localités] FROM Localités WHERE [ID Type]<0"_s)
                  ->Value(0)
                  .toInt();
    });
    return withPlaces(folder, [map](reference::Cl_Localité& places) {
        CalibrationForm form;
        return places.Calibrate(map, 100, 500, 100, 300, {0, 0, 600, 400}, &form)
               || say(u"carte non calibrée"_s);
    });
}

bool writePoints(const QString& folder, int count)
{
    map::Points points;
    for (int i = 1; i <= count; ++i) {
        points.add({.locality = i, .name = u"Localité %1"_s.arg(i), .at = {i * 0.01, 45}});
    }
    YesDialogues dialogues;
    return map::exportPoints(map::ExportFormat::Kml, points, {}, dialogues,
                             folder + u'/' + pointsFile);
}

void preparePoints(const QString& folder)
{
    writePoints(folder, 5);
}

bool exportPoints(const QString& folder)
{
    return writePoints(folder, 3000);
}

void sweepAway(const QString& folder)
{
    platform::removeUnfinished(folder + u'/' + pointsFile);
}

QString pointsState(const QString& folder)
{
    QFile file(folder + u'/' + pointsFile);
    if (!file.open(QIODevice::ReadOnly)) {
        return u"absent"_s;
    }
    const QByteArray content = file.readAll();
    if (!content.endsWith("</kml>\r\n")) {
        throw std::runtime_error("le fichier de points n'est pas entier");
    }
    return QString::number(content.count("<Placemark>"));
}

} // namespace

const std::vector<Operation>& mapOperations()
{
    static const std::vector<Operation> table{
        {u"carte"_s, makeProject, addMap, reopen, projectState, {projectFile}, {}},
        {u"calibrer"_s, prepareMap, calibrate, reopen, projectState, {projectFile}, {}},
        {u"points"_s, preparePoints, exportPoints, sweepAway, pointsState, {pointsFile}, {}},
    };
    return table;
}

} // namespace faults
