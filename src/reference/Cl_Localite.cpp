#include "reference/Cl_Localite.h"

#include "jet/SqlText.h"
#include "reference/PathCodes.h"

#include <QLoggingCategory>

namespace reference {

using namespace Qt::StringLiterals;
using jet::texte;

namespace {

Q_LOGGING_CATEGORY(placesLog, "herbora.localites")

const QString world = u"Monde"_s;

} // namespace

Cl_Localité::Cl_Localité(const ReferenceContext& context, const QString& applicationFolder)
    : ReferenceList(context, u"Localités"_s), m_folder(applicationFolder)
{
}

QString Cl_Localité::CodeLocalité(qint32 id) const
{
    return position(id) ? text(u"CodeRegion"_s) : QString();
}

qint32 Cl_Localité::IDparent(qint32 id) const
{
    const QString code = CodeLocalité(id);
    return code.contains(u'/') ? code.section(u'/', -2, -2).toInt() : 0;
}

QString Cl_Localité::TypeLocalité(qint32 id) const
{
    return position(id) && value(u"ID Type"_s).toInt() < 0 ? u"Carte"_s : u"Localité"_s;
}

QString Cl_Localité::NomLocalité(qint32 id, int mode) const
{
    if (!position(id))
        return world;
    const QString name = text(u"Localité"_s);
    if (value(u"ID Type"_s).toInt() < 0)
        return name;
    if (mode == 2)
        return text(u"GPSRef"_s);
    const QString whole = text(u"Nom Entier"_s);
    return mode == 1 && !whole.isEmpty() ? whole : name;
}

QString Cl_Localité::NomCarte(qint32 id) const
{
    return position(id) ? text(u"ImageRegion"_s) : m_folder + u"/Globe.gif"_s;
}

/// The two columns cannot be empty: a place at 0, 0 was never given a position.
bool Cl_Localité::hasPosition() const
{
    return value(u"ID Type"_s).toInt() < 0 || value(u"LongDD"_s).toDouble() != 0 || value(u"LatDD"_s).toDouble() != 0;
}

Cl_Localité::Coordinates Cl_Localité::Coordonnées(qint32 id) const
{
    if (!position(id))
        return {};
    if (!hasPosition())
        return {{}, {}, value(u"Altitude"_s), value(u"SizeLongDD"_s), value(u"SizeLatDD"_s)};
    return {value(u"LongDD"_s), value(u"LatDD"_s), value(u"Altitude"_s), value(u"SizeLongDD"_s), value(u"SizeLatDD"_s)};
}

QString Cl_Localité::SQLLocalités(qint32 parent, const QString& pattern) const
{
    QString statement = u"SELECT [ID Localités],[Localité] FROM [Localités] WHERE [ID Type]>=0"_s;
    if (parent > 0) {
        const QString code = texte(CodeLocalité(parent)).chopped(1);
        statement += u" AND [CodeRegion] LIKE "_s + code + u"/\"&[ID Localités]"_s;
    } else if (parent == 0) {
        statement += u"  AND [ID Localités] &\"\"=[CodeRegion]"_s;
    }
    if (!pattern.isEmpty())
        statement += u" AND ([Localité] like "_s + texte(pattern) + u" OR [GPSRef] like "_s + texte(pattern) + u')';
    return statement + u" ORDER BY [Localité]"_s;
}

std::unique_ptr<jet::Recordset> Cl_Localité::RecordSetLocalités(qint32 parent, const QString& pattern) const
{
    return m_context.database.OpenRecordset(SQLLocalités(parent, pattern));
}

Found Cl_Localité::SearchLocalités(const QString& pattern) const
{
    try {
        return search(SQLLocalités(-1, pattern), {}); // without the second try that names of plants and people have
    } catch (const jet::Error& error) {
        qCWarning(placesLog).noquote() << "search" << error.number() << error.description();
        return {};
    }
}

QString Cl_Localité::codeUnder(qint32 parent, qint32 id) const
{
    return stripped(CodeLocalité(parent) + u'/' + QString::number(id));
}

/// Only one level of parent is shown.
QString Cl_Localité::fullName(const QString& code, const QString& name) const
{
    const qint32 parent = code.contains(u'/') ? code.section(u'/', -2, -2).toInt() : 0;
    return position(parent) ? text(u"Localité"_s) + u" - "_s + name : name;
}

void Cl_Localité::RefrsNomEntier(qint32 id)
{
    const QString name = position(id) ? text(u"Localité"_s) : QString();
    const QString code = texte(text(u"CodeRegion"_s)).chopped(1);
    const auto rows = m_context.database.OpenRecordset(u"SELECT * FROM Localités WHERE Localités.[CodeRegion]="_s + code
                                                       + u"/\" &Localités.[ID Localités]"_s);
    for (; !rows->EOF_(); rows->MoveNext()) {
        rows->Edit();
        rows->SetValue(u"Nom Entier", name + u" - "_s + rows->Value(u"Localité").toString());
        rows->SetValue(u"DateModify", now());
        rows->Update();
    }
}

} // namespace reference
