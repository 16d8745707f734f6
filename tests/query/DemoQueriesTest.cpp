// Queries over the demo project: their text, and their records against those that the rows themselves give.
#include "app/Demo.h"
#include "app/DemoModules.h"
#include "jet/Recordset.h"
#include "query/Query.h"
#include "support/Project.h"


using namespace Qt::StringLiterals;
using query::Criterion;

namespace {

using Record = QVariantMap;

QString captionsPath(const QString& captions)
{
    return QString(captions).replace(u'/', query::pathSeparator);
}

/// The rows of a table, read whole and past all queries.
QHash<qint32, Record> recordsOf(jet::Database& db, const QString& table)
{
    QHash<qint32, Record> records;
    const auto rows = db.OpenRecordset(table, jet::RecordsetType::Table);
    for (; !rows->EOF_(); rows->MoveNext()) {
        Record record;
        for (int column = 0; column < rows->FieldCount(); ++column)
            record.insert(rows->FieldAt(column).name, rows->Value(column));
        records.insert(record.value(u"ID "_s + table).toInt(), record);
    }
    return records;
}

class DemoQueries : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        project = std::make_unique<support::TestProject>();
        ASSERT_TRUE(app::buildDemo(project->session, project->path(), project->progression));
        jet::Database& db = project->db();
        for (const QString& table : {u"Individus"_s, u"Mesures"_s, u"Déterminations"_s, u"Images"_s, u"Taxons"_s,
                                     u"Localités"_s, u"Collecteurs"_s})
            tables.insert(table, recordsOf(db, table));
    }
    static void TearDownTestSuite()
    {
        tables.clear();
        project.reset();
    }

    void SetUp() override
    {
        context.nextId = [this] { return ++counter; };
        structure = std::make_unique<query::Structure>(project->db(), context);
        structure->LoadStructure(project->session.modules());
    }

    static Record record(const QString& table, const QVariant& id)
    {
        return id.isValid() ? tables.value(table).value(id.toInt()) : Record();
    }
    query::CodeRegion codes() const
    {
        return [](qint32 place) { return record(u"Localités"_s, place).value(u"CodeRegion"_s).toString(); };
    }
    /// "{captions}" is the number in the alias of the table to which that link field leads.
    QString written(QString text) const
    {
        for (qsizetype open = text.indexOf(u'{'); open >= 0; open = text.indexOf(u'{')) {
            const qsizetype close = text.indexOf(u'}', open);
            const QString key = structure->KeyFromPath(captionsPath(text.mid(open + 1, close - open - 1)));
            EXPECT_FALSE(key.isEmpty()) << text.toStdString();
            text.replace(open, close - open + 1, key.section(u'-', 0, 0));
        }
        return text;
    }
    /// The records that the statement gives, once each.
    static QSet<qint32> found(const QString& statement)
    {
        QSet<qint32> ids;
        const auto rows = project->db().OpenRecordset(statement);
        for (; !rows->EOF_(); rows->MoveNext())
            ids << rows->Value(1).toInt();
        return ids;
    }
    template <typename Holds> static QSet<qint32> expected(const QString& table, Holds holds)
    {
        QSet<qint32> ids;
        const QHash<qint32, Record>& records = tables[table];
        for (auto row = records.begin(); row != records.end(); ++row) {
            if (holds(row.value()))
                ids << row.key();
        }
        return ids;
    }

    static inline std::unique_ptr<support::TestProject> project;
    static inline QHash<QString, QHash<qint32, Record>> tables;
    editing::EditingContext context;
    qint32 counter = 0;
    std::unique_ptr<query::Structure> structure;
};

bool holds(const QVariant& text, const QString& part)
{
    return text.isValid() && text.toString().contains(part, Qt::CaseInsensitive);
}

/// Of a list in one text, each item whole.
bool lists(const QVariant& list, const QString& item)
{
    return list.toString().split(u';').contains(item, Qt::CaseInsensitive);
}

QString rankOf(const Record& taxon)
{
    if (!taxon.value(u"ID Genre"_s).isValid())
        return u"Famille"_s;
    if (!taxon.value(u"ID Espèce"_s).isValid())
        return u"Genre"_s;
    return taxon.value(u"ID Infra"_s).isValid() ? u"Taxon Infra"_s : u"Espèce"_s;
}

} // namespace

TEST_F(DemoQueries, EveryTypeOfFieldGivesTheRecordsThatItsRowsGive)
{
    structure->setNomModule(u"Mesures"_s);
    const query::StatementBuilder builder(*structure, codes());

    const qint32 person = tables[u"Mesures"_s].begin()->value(u"ID Collecteurs"_s).toInt();
    qint32 taxon = 0;
    qint32 place = 0;
    QString region;
    for (const Record& r : std::as_const(tables[u"Mesures"_s])) {
        taxon = qMax(taxon, r.value(u"ID Taxons"_s).toInt());
        const QString code = record(u"Localités"_s, r.value(u"ID Localités"_s)).value(u"CodeRegion"_s).toString();
        if (!code.isEmpty() && (region.isEmpty() || code.section(u'/', 0, 0) < region)) {
            region = code.section(u'/', 0, 0);
            place = region.toInt();
        }
    }
    const auto item = [](const QString& text) { return u" ';' &[Mesures].[Organes] &';' LIKE '*;"_s + text + u";*'"_s; };
    const struct Case {
        QString path, op, value, condition;
        std::function<bool(const Record&)> holds;
    } cases[] = {
        {u"Mesures/Rubrique"_s, u"Contient"_s, u"e"_s, u"[Mesures].[Rubrique] LIKE \"*e*\""_s,
         [&](const Record& r) { return holds(r.value(u"Rubrique"_s), u"e"_s); }},
        {u"Mesures/Rubrique"_s, u"="_s, {}, u"[Mesures].[Rubrique] IS NULL"_s,
         [&](const Record& r) { return !r.value(u"Rubrique"_s).isValid(); }},
        {u"Mesures/Méthode"_s, u"="_s, u"planche d'herbier"_s, u"[Mesures].[Méthode] = \"planche d'herbier\""_s,
         [](const Record& r) { return r.value(u"Méthode"_s).toString() == u"Planche d'herbier"; }},
        {u"Mesures/Organes mesurés"_s, u"="_s, u"tronc;écorce"_s,
         u"("_s + item(u"tronc"_s) + u" AND"_s + item(u"écorce"_s) + u")=True"_s,
         [](const Record& r) { return lists(r[u"Organes"_s], u"tronc"_s) && lists(r[u"Organes"_s], u"écorce"_s); }},
        {u"Mesures/Organes mesurés"_s, u"<>"_s, u"tronc;écorce"_s,
         u"("_s + item(u"tronc"_s) + u" AND"_s + item(u"écorce"_s) + u")=False"_s,
         [](const Record& r) { return !(lists(r[u"Organes"_s], u"tronc"_s) && lists(r[u"Organes"_s], u"écorce"_s)); }},
        {u"Mesures/Organes mesurés"_s, u"Contient"_s, u"style;fruit"_s,
         u"("_s + item(u"style"_s) + u" OR"_s + item(u"fruit"_s) + u")=True"_s,
         [](const Record& r) { return lists(r[u"Organes"_s], u"style"_s) || lists(r[u"Organes"_s], u"fruit"_s); }},
        {u"Mesures/Organes mesurés"_s, u"Ne Contient pas"_s, u"style;fruit"_s,
         u"("_s + item(u"style"_s) + u" OR"_s + item(u"fruit"_s) + u")=False"_s,
         [](const Record& r) { return !lists(r[u"Organes"_s], u"style"_s) && !lists(r[u"Organes"_s], u"fruit"_s); }},
        {u"Mesures/Diamètre"_s, u"Supérieur"_s, u"25,5"_s, u"[Mesures].[Diamètre] > 25.5"_s,
         [](const Record& r) { return r.value(u"Diamètre"_s).toDouble() > 25.5; }},
        {u"Mesures/Épaisseur d'écorce"_s, u"<"_s, u"6"_s, u"[Mesures].[Écorce] < 6"_s,
         [](const Record& r) { return r.value(u"Écorce"_s).isValid() && r.value(u"Écorce"_s).toDouble() < 6; }},
        {u"Mesures/Hauteur"_s, u">"_s, {}, u"[Mesures].[Hauteur] IS NOT NULL"_s,
         [](const Record& r) { return r.value(u"Hauteur"_s).isValid(); }},
        {u"Mesures/Diamètre et hauteur"_s, u"="_s, u"oui"_s, u"[Mesures].[Complet] = TRUE"_s,
         [](const Record& r) { return r.value(u"Complet"_s).toBool(); }},
        {u"Mesures/Diamètre et hauteur"_s, u"Différent"_s, u"Vrai"_s, u"[Mesures].[Complet] <> TRUE"_s,
         [](const Record& r) { return !r.value(u"Complet"_s).toBool(); }},
        {u"Mesures/Longueur de tige"_s, u"LIKE"_s, u"-"_s, u"[Mesures].[LongueurTige] LIKE \"*-*\""_s,
         [&](const Record& r) { return holds(r.value(u"LongueurTige"_s), u"-"_s); }},
        {u"Mesures/Longueur de tige"_s, u"NOT LIKE"_s, u"1*"_s, u"[Mesures].[LongueurTige] NOT LIKE \"1*\""_s,
         [&](const Record& r) {
             return r.value(u"LongueurTige"_s).isValid() && !r.value(u"LongueurTige"_s).toString().startsWith(u'1');
         }},
        {u"Mesures/Nombre de mesures"_s, u"IN"_s, u"2\n3"_s, u"[Mesures].[NombreMesures] IN (2,3)"_s,
         [](const Record& r) { return QList{2, 3}.contains(r.value(u"NombreMesures"_s).toInt()); }},
        {u"Mesures/Nombre de mesures"_s, u"<>"_s, u"2"_s, u"[Mesures].[NombreMesures] <> 2"_s,
         [](const Record& r) { return r.value(u"NombreMesures"_s).isValid() && r.value(u"NombreMesures"_s).toInt() != 2; }},
        {u"Mesures/Date de l'échantillon"_s, u"Après"_s, u"1950"_s, u"[Mesures].[DateÉchantillon] > \"1950\""_s,
         [](const Record& r) { return r.value(u"DateÉchantillon"_s).toString() > u"1950"; }},
        {u"Mesures/Date de l'échantillon"_s, u"Contient"_s, u"19"_s, u"[Mesures].[DateÉchantillon] LIKE \"*19*\""_s,
         [&](const Record& r) { return holds(r.value(u"DateÉchantillon"_s), u"19"_s); }},
        {u"Mesures/Récolteur de l'échantillon"_s, u"="_s, QString::number(person),
         u"[Mesures].[ID Collecteurs] = "_s + QString::number(person),
         [&](const Record& r) { return r.value(u"ID Collecteurs"_s).toInt() == person && person > 0; }},
        {u"Mesures/Lieu de l'échantillon"_s, u"Région de"_s, QString::number(place),
         u"[Localités{Mesures/Lieu de l'échantillon}].[CodeRegion] &\"/\" LIKE \""_s + region + u"/*\""_s,
         [&](const Record& r) {
             const QString code = record(u"Localités"_s, r.value(u"ID Localités"_s)).value(u"CodeRegion"_s).toString();
             return code == region || code.startsWith(region + u'/');
         }},
        {u"Mesures/Longitude du point"_s, u">"_s, u"W050°"_s, u"[Mesures].[LongitudePoint] > -50"_s,
         [](const Record& r) { return r.value(u"LongitudePoint"_s).isValid() && r.value(u"LongitudePoint"_s).toDouble() > -50; }},
        {u"Mesures/Latitude du point"_s, u"<"_s, u"10"_s, u"[Mesures].[LatitudePoint] < 10"_s,
         [](const Record& r) { return r.value(u"LatitudePoint"_s).isValid() && r.value(u"LatitudePoint"_s).toDouble() < 10; }},
        {u"Mesures/Taxon de l'échantillon"_s, u"="_s, QString::number(taxon) + u" - un nom"_s,
         u"[Mesures].[ID Taxons] = "_s + QString::number(taxon),
         [&](const Record& r) { return r.value(u"ID Taxons"_s).toInt() == taxon; }},
        {u"Mesures/Taxon de l'échantillon/Rang Taxonomique"_s, u"="_s, u"Espèce"_s,
         u"IIf([Taxons{Mesures/Taxon de l'échantillon}].[ID Genre] Is Null,'Famille',"
         "IIf([Taxons{Mesures/Taxon de l'échantillon}].[ID Espèce] Is Null,'Genre',"
         "IIf([Taxons{Mesures/Taxon de l'échantillon}].[ID Infra] Is Null,'Espèce','Taxon Infra'))) = \"Espèce\""_s,
         [&](const Record& r) { return rankOf(record(u"Taxons"_s, r.value(u"ID Taxons"_s))) == u"Espèce"; }},
        {u"Mesures/Taxon de l'échantillon/Valide"_s, u"="_s, u"Faux"_s,
         u"ISNULL([Taxons{Mesures/Taxon de l'échantillon}].[ID Valid]) = FALSE"_s,
         [&](const Record& r) { return record(u"Taxons"_s, r.value(u"ID Taxons"_s)).value(u"ID Valid"_s).isValid(); }},
        // Two links in a row, and one more: the family of the name behind the determination.
        {u"Mesures/Détermination/Taxon/Famille/Nom"_s, u"LIKE"_s, u"a*"_s,
         u"[Taxons{Mesures/Détermination/Taxon/Famille}].[Nom Complet] LIKE \"a*\""_s,
         [&](const Record& r) {
             const Record kept = record(u"Déterminations"_s, r.value(u"ID Déterminations"_s));
             const Record name = record(u"Taxons"_s, kept.value(u"ID Taxons"_s));
             return record(u"Taxons"_s, name.value(u"ID Famille"_s)).value(u"Nom Complet"_s).toString()
                 .startsWith(u'a', Qt::CaseInsensitive);
         }},
        {u"Mesures/Détermination"_s, u"Exclus"_s, u"1,2,3"_s, u"[Mesures].[ID Déterminations] NOT IN (1,2,3)"_s,
         [](const Record& r) {
             return r.value(u"ID Déterminations"_s).isValid() && r.value(u"ID Déterminations"_s).toInt() > 3;
         }},
        {u"Mesures/Planche de comparaison"_s, u"LIKE"_s, u".jpg"_s, u"[Mesures].[Planche] LIKE \"*.jpg*\""_s,
         [&](const Record& r) { return holds(r.value(u"Planche"_s), u".jpg"_s); }},
        {u"Mesures/Relevé"_s, u"="_s, u"mm"_s, u"[Mesures].[Relevé] LIKE \"*mm*\""_s,
         [&](const Record& r) { return holds(r.value(u"Relevé"_s), u"mm"_s); }},
        {u"Mesures/Image/IDParent"_s, u"LIKE"_s, u"-Individus"_s, u"[Images].[KeyParent] LIKE \"*-Individus*\""_s,
         [&](const Record& r) {
             const auto& pictures = tables[u"Images"_s];
             return std::any_of(pictures.begin(), pictures.end(), [&](const Record& picture) {
                 return picture[u"ID Individus"_s] == r[u"ID Individus"_s] && holds(picture[u"KeyParent"_s], u"-Individus"_s);
             });
         }},
        {u"Mesures/Verrou"_s, u"="_s, u"Non"_s, u"[Mesures].[Locked] = FALSE"_s,
         [](const Record& r) { return !r.value(u"Locked"_s).toBool(); }},
        {u"Mesures/Individu/Altitude"_s, u">"_s, u"100"_s, u"[Individus].[Altitude] > 100"_s,
         [&](const Record& r) {
             return record(u"Individus"_s, r.value(u"ID Individus"_s)).value(u"Altitude"_s).toDouble() > 100;
         }},
        {u"Mesures/Compte"_s, u">"_s, u"1"_s, u"[N_Mesures].[N] > 1"_s,
         [&](const Record& r) {
             int count = 0;
             for (const Record& other : std::as_const(tables[u"Mesures"_s]))
                 count += other.value(u"ID Individus"_s) == r.value(u"ID Individus"_s) ? 1 : 0;
             return count > 1;
         }},
    };
    int empty = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE((c.path + u' ' + c.op + u' ' + c.value).toStdString());
        query::QueryDefinition definition;
        definition.module = u"Mesures"_s;
        definition.criteria.add({.path = captionsPath(c.path), .op = c.op, .value = c.value, .permanent = {}});
        ASSERT_TRUE(builder.check(definition).isEmpty()) << builder.check(definition).first().text.toStdString();
        EXPECT_EQ(builder.where(definition), written(c.condition));
        const QSet<qint32> right = expected(u"Mesures"_s, c.holds);
        EXPECT_EQ(found(builder.statement(definition)), right);
        empty += right.isEmpty() || right.size() == tables[u"Mesures"_s].size() ? 1 : 0;
    }
    EXPECT_LE(empty, 6) << "cases that select nothing or everything prove little";
}

TEST_F(DemoQueries, BothWaysToOneModuleStayApart)
{
    const query::StatementBuilder builder(*structure, codes());
    query::QueryDefinition definition;
    definition.columns = {{captionsPath(u"Individu/Détermination courante/Taxon/Nom"_s), u"Courant"_s, u"Décroissant"_s, {}},
                          {captionsPath(u"Individu/Numéro"_s), u"Numéro"_s, u"Croissant"_s, {}}};
    // The current determination is of one family, some determination of another genus than the current one's.
    definition.criteria.add({.path = captionsPath(u"Individu/Détermination courante/Taxon/Nom"_s), .op = u"LIKE"_s,
                             .value = u"p*"_s, .permanent = {}});
    const qsizetype group = definition.criteria.add({.path = captionsPath(u"Individu/Détermination/Taxon/Nom"_s),
                                                     .op = u"NOT LIKE"_s, .value = u"p*"_s, .permanent = {}});
    definition.criteria.addChild(group, {.link = u"OU"_s, .path = captionsPath(u"Individu/Image/Compte"_s), .op = u">"_s,
                                         .value = u"0"_s, .permanent = {}});
    EXPECT_EQ(builder.statement(definition),
              written(u"SELECT DISTINCTROW [Individus].[ID Individus] AS [Individu],[Individus].[ID Individus] AS [ID Individus],"
                      "[Taxons{Individu/Détermination courante/Taxon}].[Nom Complet] AS [Courant],[Individus].[Numéro] AS [Numéro]\r\n"
                      "FROM ((((([Individus] LEFT JOIN [Déterminations] AS [Déterminations{Individu/Détermination courante}] ON "
                      "[Individus].[ID Déterminations]=[Déterminations{Individu/Détermination courante}].[ID Déterminations]) "
                      "LEFT JOIN [Taxons] AS [Taxons{Individu/Détermination courante/Taxon}] ON "
                      "[Déterminations{Individu/Détermination courante}].[ID Taxons]="
                      "[Taxons{Individu/Détermination courante/Taxon}].[ID Taxons]) "
                      "LEFT JOIN [Déterminations] ON [Individus].[ID Individus]=[Déterminations].[ID Individus]) "
                      "LEFT JOIN [Taxons] AS [Taxons{Individu/Détermination/Taxon}] ON "
                      "[Déterminations].[ID Taxons]=[Taxons{Individu/Détermination/Taxon}].[ID Taxons]) "
                      "LEFT JOIN [N_Images] ON [Individus].[ID Individus]=[N_Images].[ID Individus])\r\n"
                      "WHERE [Taxons{Individu/Détermination courante/Taxon}].[Nom Complet] LIKE \"p*\" AND "
                      "(([Taxons{Individu/Détermination/Taxon}].[Nom Complet] NOT LIKE \"p*\") OR [N_Images].[N] > 0)\r\n"
                      "ORDER BY [Taxons{Individu/Détermination courante/Taxon}].[Nom Complet] DESC,[Individus].[Numéro]"_s));
    const auto taxonName = [](const Record& determination) {
        return record(u"Taxons"_s, determination.value(u"ID Taxons"_s)).value(u"Nom Complet"_s).toString();
    };
    const QSet<qint32> right = expected(u"Individus"_s, [&](const Record& individual) {
        const Record current = record(u"Déterminations"_s, individual.value(u"ID Déterminations"_s));
        if (!taxonName(current).startsWith(u'p', Qt::CaseInsensitive))
            return false;
        const auto of = [&](const Record& other) { return other[u"ID Individus"_s] == individual[u"ID Individus"_s]; };
        for (const Record& picture : std::as_const(tables[u"Images"_s])) {
            if (of(picture))
                return true;
        }
        for (const Record& determination : std::as_const(tables[u"Déterminations"_s])) {
            const QString name = taxonName(determination);
            if (of(determination) && !name.isEmpty() && !name.startsWith(u'p', Qt::CaseInsensitive))
                return true;
        }
        return false;
    });
    EXPECT_FALSE(right.isEmpty());
    EXPECT_LT(right.size(), tables[u"Individus"_s].size() / 2);
    EXPECT_EQ(found(builder.statement(definition)), right);
}

TEST_F(DemoQueries, TheStoredQueriesOfTheDemoRun)
{
    query::Query query(*structure, {project->db(), project->clock, project->dialogues, project->session.properties(), codes()});
    ASSERT_TRUE(query.LoadRequête(u"Plantes d'altitude"_s));
    EXPECT_EQ(found(query.SQLStatement()), expected(u"Individus"_s, [](const Record& r) {
                  return r.value(u"Altitude"_s).toDouble() > 400;
              }));
    ASSERT_TRUE(query.LoadRequête(u"Herbier RB"_s));
    EXPECT_EQ(found(query.SQLStatement()),
              expected(u"Individus"_s, [](const Record& r) { return lists(r.value(u"Herbier"_s), u"RB"_s); }));
}
