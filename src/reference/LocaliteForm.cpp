// The forms of a place and of a map's calibration.
#include "data/FieldType.h"
#include "editing/Formats.h"
#include "reference/Cl_Localite.h"

#include <QLoggingCategory>
#include <cmath>

namespace reference {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(placeFormLog, "herbora.localites")

constexpr int mapType = -1;

/// One field of the form of a place.
struct FormField {
    QString column;
    int type;
    QString help;
    QString caption;
};

const QList<FormField>& placeFields()
{
    using namespace data;
    // "du points" in the help of the latitude has always been written so.
    static const QList<FormField> fields{
        {u"Localité"_s, Texte, u"Nom de la localité"_s, u"Nom de la Localité"_s},
        {u"LongDD"_s, Longitude, u"Indiquez la longitude du point GPS (Décimale ou [W-E]ddd°mm'ss.000)"_s, u"Longitude X1"_s},
        {u"LatDD"_s, Latitude, u"Indiquez la latitude du points GPS (Décimale ou [N-S]dd°mm'ss.000)"_s, u"Latitude Y1"_s},
        {u"Altitude"_s, Réel, u"Indiquez l'altitude du point"_s, u"Altitude"_s},
        {u"GPSRef"_s, Texte, u"Indiquez la référence GPS du point"_s, u"Référence GPS"_s},
        {u"Xorigine"_s, Réel, u"Indiquez l'origine en X du dispositif"_s, u"X origine"_s},
        {u"Yorigine"_s, Réel, u"Indiquez l'origine en Y du dispositif"_s, u"Y origine"_s},
        {u"Largeur"_s, Réel, u"Indiquez la largeur (axe X) du dispositif"_s, u"Largeur"_s},
        {u"Longueur"_s, Réel, u"Indiquez la longueur (axe Y) du dispositif"_s, u"Longueur"_s},
    };
    return fields;
}

const QList<FormField>& calibrationFields()
{
    using namespace data;
    static const QList<FormField> fields{
        {u"LongDD"_s, Longitude, u"Indiquez la longitude du point 1 de calibration (Décimale ou [W-E]ddd°mm'ss.000)"_s, u"Longitude X1"_s},
        {u"LatDD"_s, Latitude, u"Indiquez la latitude du point 1 de calibration (Décimale ou [N-S]dd°mm'ss.000)"_s, u"Latitude Y1"_s},
        {u"SizeLongDD"_s, Longitude, u"Indiquez la longitude du point 2 de calibration (Décimale ou [W-E]ddd°mm'ss.000)"_s, u"Longitude X2"_s},
        {u"SizeLatDD"_s, Latitude, u"Indiquez la latitude du point 2 de calibration (Décimale ou [N-S]dd°mm'ss.000)"_s, u"Latitude Y2"_s},
    };
    return fields;
}

/// The two columns that a place cannot be without: one that has no position holds 0 in both.
bool isCoordinate(const QString& column)
{
    return column == u"LongDD" || column == u"LatDD";
}

} // namespace

QString Cl_Localité::FillTabEdit(editing::Cl_Editions& form, qint32 id)
{
    form.Clear();
    const bool known = position(id);
    const bool placed = known && hasPosition();
    for (const FormField& field : placeFields()) {
        const bool held = isCoordinate(field.column) ? placed : known;
        form.Add(field.type, field.caption, held ? value(field.column) : QVariant(), field.help, field.column,
                 field.column != u"Localité", 0);
    }
    for (const auto& field : form)
        field->ChpEdition()->Changed = false;
    return known ? NomLocalité(id, 1) : u"Monde (Nouvelle Localité)"_s;
}

qint32 Cl_Localité::saveRow(const editing::Cl_Editions& form, qint32 id, qint32 parent)
{
    const QString before = position(id) ? text(u"Localité"_s) : QString();
    QList<QPair<QString, QVariant>> values;
    for (const FormField& field : placeFields()) {
        const editing::Cl_Edition* edited = form.Item(field.column);
        if (edited && isCoordinate(field.column) && !edited->value().isValid())
            values.append({field.column, 0.0});
        else if (edited)
            values.append({field.column, edited->value()});
    }
    const QString name = form.Item(u"Localité"_s)->value().toString();
    jet::Operation operation(m_context.database, u"Enregistrement d'une localité"_s);
    const qint32 saved = write(id, values);
    QString code = CodeLocalité(saved);
    QList<QPair<QString, QVariant>> derived;
    if (id <= 0) {
        code = codeUnder(parent, saved);
        derived = {{u"CodeRegion"_s, code}, {u"ID Type"_s, int(code.count(u'/'))}};
    }
    derived.append({u"Nom Entier"_s, fullName(code, name)});
    write(saved, derived);
    if (id > 0 && before != name)
        RefrsNomEntier(saved);
    operation.commit();
    return saved;
}

/// One coordinate without the other is no position; the field that is missing says so.
bool Cl_Localité::isHalfPlaced(editing::Cl_Editions& form) const
{
    editing::Cl_Edition* longitude = form.Item(u"LongDD"_s);
    editing::Cl_Edition* latitude = form.Item(u"LatDD"_s);
    if (!longitude || !latitude || longitude->value().isValid() == latitude->value().isValid())
        return false;
    (longitude->value().isValid() ? latitude : longitude)->setTextError(u"Indiquez la longitude et la latitude, ou aucune des deux"_s);
    return true;
}

bool Cl_Localité::Save(editing::Cl_Editions& form, qint32 parent)
{
    const qint32 id = current();
    m_failure = 0;
    try {
        for (const auto& field : form) {
            if (!field->valid())
                return false;
        }
        if (isHalfPlaced(form))
            return false;
        const qint32 saved = saveRow(form, id, parent);
        editing::Cl_Editions fresh(m_context.editing);
        FillTabEdit(fresh, saved);
        takeOver(form, fresh);
        position(saved);
        Q_EMIT Change(saved);
        return true;
    } catch (const jet::Error& error) {
        qCWarning(placeFormLog).noquote() << "save" << error.number() << error.description();
        m_failure = error.number();
        if (form.Count() > 0)
            form.Item(0)->setTextError(error.description());
        position(id);
        return false;
    }
}

bool Cl_Localité::Add(qint32 parent, const QList<QPair<QString, QVariant>>& proposed)
{
    if (!m_context.form)
        return false;
    editing::Cl_Editions form(m_context.editing);
    FillTabEdit(form, 0);
    for (const auto& [column, value] : proposed) {
        if (editing::Cl_Edition* field = form.Item(column))
            field->setValue(value);
    }
    const QString title = NomLocalité(parent, 1) + u" (Nouvelle Localité)"_s;
    return m_context.form->edit(title, form, [this, parent](editing::Cl_Editions& f) {
        position(0);
        return Save(f, parent);
    });
}

bool Cl_Localité::Edit(qint32 id)
{
    if (!m_context.form || !position(id))
        return false;
    editing::Cl_Editions form(m_context.editing);
    const QString title = FillTabEdit(form, id);
    return m_context.form->edit(title, form, [this, id](editing::Cl_Editions& f) {
        position(id);
        return Save(f, 0);
    });
}

qint32 Cl_Localité::AddCarte(qint32 parent, const QString& name, const std::array<double, 4>& frame,
                             const QString& picture)
{
    try {
        jet::Operation operation(m_context.database, u"Ajout d'une carte"_s);
        const qint32 id = write(0, {{u"Localité"_s, name},
                                    {u"LongDD"_s, frame[0]},
                                    {u"LatDD"_s, frame[1]},
                                    {u"SizeLongDD"_s, frame[2]},
                                    {u"SizeLatDD"_s, frame[3]},
                                    {u"ID Type"_s, mapType},
                                    {u"ImageRegion"_s, picture}});
        write(id, {{u"CodeRegion"_s, codeUnder(parent, id)}});
        operation.commit();
        position(id);
        Q_EMIT Change(id);
        return id;
    } catch (const jet::Error& error) {
        qCWarning(placeFormLog).noquote() << "map" << error.number() << error.description();
        m_context.dialogues.tell(u"Impossible d'ajouter la carte :\n"_s + error.description(), u"Ajout d'une carte"_s,
                                 platform::BoxIcon::Stop);
        return 0;
    }
}

bool Cl_Localité::Calibrate(qint32 id, double x1, double x2, double y1, double y2, const std::array<double, 4>& bounds,
                            editing::FormDialogue* dialogue)
{
    editing::FormDialogue* asking = dialogue ? dialogue : m_context.form;
    if (!asking || !position(id))
        return false;
    editing::Cl_Editions form(m_context.editing);
    for (const FormField& field : calibrationFields())
        form.Add(field.type, field.caption, QVariant(), field.help, field.column, false, 0);
    return asking->edit(u"Calibration de la carte "_s + NomLocalité(id, 0), form, [&](editing::Cl_Editions& f) {
        if (!f.valid())
            return false;
        const double ax = (f.Item(2)->value().toDouble() - f.Item(0)->value().toDouble()) / (x2 - x1);
        const double ay = (f.Item(3)->value().toDouble() - f.Item(1)->value().toDouble()) / (y2 - y1);
        if (!(ax * ay != 0) || !std::isfinite(ax * ay)) {
            m_context.dialogues.tell(u"Erreur de calibration: Impossible de calibrer la carte en utilisant des points de même Latitude/longitude"_s,
                                     u"Calibration"_s, platform::BoxIcon::Stop);
            return false;
        }
        const double bx = f.Item(0)->value().toDouble() - ax * x1;
        const double by = f.Item(1)->value().toDouble() - ay * y1;
        try {
            write(id, {{u"LongDD"_s, ax * bounds[0] + bx},
                       {u"LatDD"_s, ay * bounds[1] + by},
                       {u"SizeLongDD"_s, ax * bounds[2] + bx},
                       {u"SizeLatDD"_s, ay * bounds[3] + by}});
        } catch (const jet::Error& error) {
            f.Item(0)->setTextError(error.description());
            return false;
        }
        Q_EMIT Change(id);
        return true;
    });
}

} // namespace reference
