// A query as it is stored.
#include "QueryFixture.h"

using namespace Qt::StringLiterals;
using query::Criterion;

namespace {

query::QueryDefinition sample()
{
    query::QueryDefinition definition;
    definition.mode = query::modePicture;
    definition.columns = {{fieldPath(u"Individu/Numéro"_s), u"N° \"de\" récolte\t[x] \\t = Images.y"_s, query::orderUp, {}},
                          {fieldPath(u"Individu/Détermination courante/Taxon/Nom"_s), u"Images.Fichier"_s, {}, {}},
                          {fieldPath(u"Individu/Image"_s), u"Photo"_s, query::orderDown, {}}};
    definition.criteria.setRows(
        {{.link = u"ET"_s, .path = fieldPath(u"Individu/Image/Légende"_s), .op = u"="_s, .value = u"fleur "_s},
         {.link = u"ET"_s, .path = fieldPath(u"Individu/Altitude"_s), .op = u">"_s, .value = u"12,5"_s},
         {.link = u"OU"_s, .path = fieldPath(u"Individu/Numéro"_s), .op = u"IN"_s, .value = u"a\nb\\n"_s, .depth = 1},
         {.link = u"ET"_s, .path = fieldPath(u"Individu/Image/Compte"_s), .op = u"="_s, .value = u"2"_s, .depth = 2},
         {.link = u"ET"_s, .path = {}, .depth = 0},
         {.link = u"OU"_s, .path = fieldPath(u"Individu"_s), .op = u"IN"_s, .value = u"1,2"_s, .depth = 1}});
    return definition;
}

} // namespace

TEST_F(QueryTest, AStoredQueryComesBackAsItWas)
{
    const auto definition = sample();
    const QString text = query::textOf(definition, *structure);
    // What is stored loses its outer blanks.
    const auto back = query::definitionFrom(text.trimmed(), u"Individus"_s, *structure);
    EXPECT_EQ(back.mode, definition.mode);
    EXPECT_EQ(back.columns, definition.columns);
    EXPECT_EQ(back.criteria.rows(), definition.criteria.rows());
    EXPECT_EQ(query::textOf(back, *structure), text);
}

TEST_F(QueryTest, TheStoredTextNamesEachFieldThatItUses)
{
    query::QueryDefinition definition;
    definition.columns = {{fieldPath(u"Individu/Détermination courante/Taxon/Nom"_s), u"Nom"_s, query::orderUp, {}}};
    definition.criteria.setRows({{.path = fieldPath(u"Individu/Altitude"_s), .op = u">"_s, .value = u"400"_s}});
    EXPECT_EQ(query::textOf(definition, *structure),
              u"data\r\n"
              "colonne\t=Nom\tCroissant\tID Déterminations\\>ID Taxons\\>Nom Complet\tIndividus.ID Déterminations\t"
              "Déterminations.ID Taxons\tTaxons.Nom Complet\r\n"
              "critère\t1\tET\t>\t=400\tAltitude\tIndividus.Altitude"_s);
}

TEST_F(QueryTest, AChangedCaptionDoesNotLoseAField)
{
    const QString text = query::textOf(sample(), *structure);
    QList<data::ModuleRecord> modules = project.session.modules();
    for (data::ModuleRecord& module : modules)
        module.label += u" (bis)"_s;
    structure->LoadStructure(modules);
    const auto back = query::definitionFrom(text, u"Individus"_s, *structure);
    EXPECT_EQ(back.columns[1].path, fieldPath(u"Individu (bis)/Détermination courante/Taxon/Nom"_s));
    EXPECT_EQ(query::textOf(back, *structure), text);
}

TEST_F(QueryTest, RemovingAModuleOrAFieldCleansTheStoredQueryAndNothingElse)
{
    data::PropertyStore& store = project.session.properties();
    const auto cleaned = [&](const QString& module, const QString& column) {
        store.put(data::kindRequête, u"Individus"_s, u"Q"_s, query::textOf(sample(), *structure));
        store.clean(module, column);
        return query::definitionFrom(store.value(data::kindRequête, u"Individus"_s, u"Q"_s).toString(),
                                     u"Individus"_s, *structure);
    };
    auto back = cleaned(u"Images"_s, {});
    EXPECT_EQ(back.columns, sample().columns.first(2)); // an alias that looks like a field stays
    ASSERT_EQ(back.criteria.count(), 4);
    EXPECT_EQ(back.criteria.at(1).path, fieldPath(u"Individu/Numéro"_s));
    EXPECT_EQ(back.criteria.at(1).depth, 1);
    back = cleaned(u"Déterminations"_s, u"ID Taxons"_s);
    EXPECT_EQ(back.columns.size(), 2);
    // The head of a group is gone: its first child takes its place, so that the others do not join another group.
    back = cleaned(u"Individus"_s, u"Altitude"_s);
    ASSERT_EQ(back.criteria.count(), 5);
    EXPECT_EQ(back.criteria.at(1).depth, 0);
    EXPECT_EQ(back.criteria.at(1).link, u"ET"_s);
    EXPECT_EQ(back.criteria.at(2).depth, 1);
}

TEST_F(QueryTest, AFieldThatIsNotThereKeepsItsStoredName)
{
    const QString text = u"data\r\ncolonne\t=Vieux\t\tAncien\tMesures.Ancien\r\n"
                         "critère\t1\tET\t=\t=3\tAncien\tMesures.Ancien"_s;
    const auto back = query::definitionFrom(text, u"Individus"_s, *structure);
    EXPECT_EQ(query::textOf(back, *structure), text);
    const query::StatementBuilder builder(*structure, codes());
    EXPECT_EQ(builder.check(back).size(), 1);
}

TEST(Criteria, MovesRowsWithTheirChildren)
{
    query::Criteria criteria;
    const auto named = [](const QString& name) { return Criterion{.path = name}; };
    const auto order = [&] {
        QStringList names;
        for (const Criterion& row : criteria.rows())
            names << QString::number(row.depth) + row.path;
        return names.join(u' ');
    };
    criteria.add(named(u"a"_s));
    criteria.add(named(u"b"_s));
    criteria.addChild(0, named(u"a1"_s));
    criteria.addChild(1, named(u"a11"_s));
    criteria.addBrother(1, named(u"a2"_s));
    EXPECT_EQ(order(), u"0a 1a1 2a11 1a2 0b"_s);
    EXPECT_EQ(criteria.down(0), 1);
    EXPECT_EQ(order(), u"0b 0a 1a1 2a11 1a2"_s);
    EXPECT_EQ(criteria.up(4), 2);
    EXPECT_EQ(order(), u"0b 0a 1a2 1a1 2a11"_s);
    EXPECT_EQ(criteria.up(2), 2);
    EXPECT_EQ(criteria.down(4), 4);
    criteria.remove(1);
    EXPECT_EQ(order(), u"0b"_s);
}

TEST(Criteria, AsTextEachRowIsFourCells)
{
    query::Criteria criteria;
    criteria.add({.link = u"OU"_s, .path = u"Individu\x1FNuméro"_s, .op = u"LIKE"_s, .value = u"a\tb\r\nc"_s});
    EXPECT_EQ(criteria.text(), u"OU\tIndividu\x1FNuméro\tLIKE\ta\tb\nc\r\n"_s);
    EXPECT_EQ(query::Criteria::fromText(criteria.text() + u"trop court\r\n"_s), criteria.rows());
}
