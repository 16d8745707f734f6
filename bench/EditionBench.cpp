// A field's value normalised and formatted, as a grid does for every cell: a million a second or better.
#include "editing/Cl_Edition.h"

#include <benchmark/benchmark.h>

namespace {

using namespace Qt::StringLiterals;
using editing::Cl_Edition;

class Names : public editing::ReferenceNames {
public:
    QString botaniste(qint32) const override { return m_name; }
    QString localité(qint32) const override { return m_name; }
    QString taxon(qint32) const override { return m_name; }
    QString taxonAuteurs(qint32) const override { return m_name; }
    QString famille(qint32) const override { return m_name; }
    QString rang(qint32) const override { return m_name; }
    QString lien(const QString&, const QString&) const override { return m_name; }

private:
    QString m_name = u"Fagus sylvatica"_s;
};

struct Cell {
    const char* name;
    int type;
    QVariant value;
    int format = 0;
    int item = 1;
};

/// What records hold, and what is typed.
const std::vector<Cell>& cells()
{
    static const std::vector<Cell> all{
        {"texte", 3, u"Lisière de hêtraie sur calcaire"_s},
        {"majuscule", 3, u"Lisière de hêtraie sur calcaire"_s, 2},
        {"longitude", 1, 6.183742},
        {"latitude", 2, 48.692054},
        {"longitude_texte", 1, u"E006°11'01.47"_s},
        {"oui_non", 4, u"True"_s},
        {"reel", 5, 12.345},
        {"reel_texte", 5, u"12,345"_s},
        {"entier", 6, 1250},
        {"date", 7, u"2001/03/06"_s},
        {"date_mois", 7, u"2001/03/06"_s, 2},
        {"date_saisie", 7, u"6 mars 2001"_s},
        {"image", 8, u"C:\\photos\\img_0012.jpg"_s},
        {"memo", 9, u"Sous-bois frais, pente nord, sol profond"_s},
        {"liste_multiple", 11, u"P;NCY;G"_s},
        {"liste_simple", 12, u"cf."_s},
        {"liste_non_liee", 12, u"cf."_s, 0, 0},
        {"botaniste", 13, 12},
        {"taxon", 15, 4711},
        {"famille", 15, 4711, 2},
        {"lien", 17, 815},
    };
    return all;
}

class Fields {
public:
    Fields()
    {
        qint32 last = 0;
        const editing::EditingContext context{[last]() mutable { return ++last; }, std::make_shared<Names>(), {}, 24};
        for (const Cell& cell : cells()) {
            fields.push_back(std::make_unique<Cl_Edition>(context));
            fields.back()->setCtype(cell.type);
            fields.back()->setFormat(cell.format);
            fields.back()->setListeItems({u"aff."_s, u"cf."_s});
            fields.back()->ChpEdition()->IDItem = cell.item;
            fields.back()->setIDIndividu(1);
        }
    }
    qsizetype show(size_t i)
    {
        Cl_Edition& field = *fields[i];
        field.setValue(cells()[i].value);
        return field.FormatedValue().size();
    }

private:
    std::vector<std::unique_ptr<Cl_Edition>> fields;
};

/// All cells in turn; the counter is the values a second.
void mixed(benchmark::State& state)
{
    Fields fields;
    for (auto _ : state) {
        for (size_t i = 0; i < cells().size(); ++i)
            benchmark::DoNotOptimize(fields.show(i));
    }
    state.SetItemsProcessed(state.iterations() * int64_t(cells().size()));
}

void one(benchmark::State& state)
{
    Fields fields;
    const auto i = size_t(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(fields.show(i));
    state.SetLabel(cells()[i].name);
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK(mixed);
BENCHMARK(one)->DenseRange(0, int64_t(cells().size()) - 1);

} // namespace

BENCHMARK_MAIN();
