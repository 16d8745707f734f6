// Rows as taxa, places and people, by the rules of their classes.
#include "app/Session.h"
#include "app/import/ImportRows.h"
#include "data/FieldType.h"
#include "jet/Recordset.h"
#include "jet/SqlText.h"
#include "jet/text/TextOrder.h"
#include "reference/Cl_Collecteur.h"
#include "reference/Cl_Localite.h"
#include "reference/Cl_Taxon.h"
#include "reference/TaxonIndex.h"

namespace app {

using namespace Qt::StringLiterals;
using jet::texte;

namespace {

constexpr qsizetype widestName = 255;

/// What the three have in common: forms of their classes, filled with the cells.
class ListRows : public ImportRows {
public:
    explicit ListRows(ImportJob& job)
        : ImportRows(job), m_database(job.session.database()),
          m_world{m_database, job.session.surroundings().clock, m_quiet, job.context}
    {
    }

protected:
    /// Puts what the row says into the form; an empty cell empties a field only when the user wants that.
    void fill(editing::Cl_Editions& form, const QStringList& cells, bool changes)
    {
        for (const ImportColumn& column : m_job.columns) {
            editing::Cl_Edition* field = column.field.column.isEmpty() ? nullptr : form.Item(column.field.column);
            if (!field || field->Locked())
                continue;
            const QVariant value = column.values->read(cells.value(column.position));
            if (value.isValid() && field->ctype() == data::OuiNon)
                field->setValue(value.toBool() ? u"True"_s : u"False"_s);
            else if (value.isValid() || (changes && m_job.plan.emptyErases && field->AllowNull()))
                field->setValue(value);
        }
    }

    QString cell(const QStringList& cells, const QString& key) const
    {
        return ImportJob::cell(cells, m_job.column(key)).normalized(QString::NormalizationForm_C);
    }

    qint32 standing(const QStringList& cells, const QString& table)
    {
        const qint32 id = m_job.plan.update ? m_job.identifier(cells, importId) : 0;
        if (id == 0)
            return 0;
        const auto rows = m_database.OpenRecordset(table, jet::RecordsetType::Table);
        rows->SetIndex(u"PrimaryKey"_s);
        rows->Seek(u"="_s, {id});
        if (rows->NoMatch())
            throw RowRefused{u"Aucune ligne de la liste n'a cet identifiant"_s, QString::number(id)};
        return id;
    }

    [[noreturn]] static void refuse(const editing::Cl_Editions& form, const QString& name, const QString& otherwise)
    {
        for (const auto& field : form) {
            if (const QString error = field->TextError(); !error.isEmpty())
                throw RowRefused{field->Caption().trimmed() + u" : "_s + error, name};
        }
        throw RowRefused{otherwise, name};
    }

    jet::Database& m_database;
    QuietDialogues m_quiet;
    reference::ReferenceContext m_world;
};

// --- People ----------------------------------------------------------------------------------------

class PersonRows : public ListRows {
public:
    explicit PersonRows(ImportJob& job) : ListRows(job), m_people(m_world) {}

    void take(const QStringList& cells) override
    {
        const qint32 id = standing(cells, u"Collecteurs"_s);
        const QString name = cell(cells, u"Collecteur"_s);
        if (id == 0 && name.isEmpty())
            throw RowRefused{u"Le nom manque"_s, {}};
        if (id == 0 && isThere(name)) {
            ++m_job.report.present;
            return;
        }
        editing::Cl_Editions form(m_world.editing);
        m_people.FillTabEdit(form, id);
        fill(form, cells, id > 0);
        editing::Cl_Edition* initials = form.Item(u"Initiales"_s);
        if (!initials->value().isValid())
            initials->setValue(NameCreation::initials(name));
        m_people.setIDcBotaniste(id);
        const bool saved = m_people.Save(form);
        NameCreation::passOn(m_people, form.Item(u"Collecteur"_s)->TextError());
        if (!saved)
            refuse(form, name, u"Collecteur impossible à enregistrer"_s);
        ++(id > 0 ? m_job.report.changed : m_job.report.added);
    }

private:
    bool isThere(const QString& name) const
    {
        return !m_database.OpenRecordset(u"SELECT TOP 1 [ID Collecteurs] FROM Collecteurs WHERE [Collecteur]="_s + texte(name))->EOF_();
    }

    reference::Cl_Collecteur m_people;
};

// --- Places ----------------------------------------------------------------------------------------

class PlaceRows : public ListRows {
public:
    explicit PlaceRows(ImportJob& job) : ListRows(job), m_places(m_world) {}

    void take(const QStringList& cells) override
    {
        const qint32 id = standing(cells, u"Localités"_s);
        const QString name = cell(cells, u"Localité"_s);
        if (id == 0 && name.isEmpty())
            throw RowRefused{u"Le nom manque"_s, {}};
        const qint32 parent = id > 0 ? 0 : parentOf(cells);
        if (id == 0 && isThere(name, parent)) {
            ++m_job.report.present;
            return;
        }
        editing::Cl_Editions form(m_world.editing);
        m_places.FillTabEdit(form, id);
        fill(form, cells, id > 0);
        for (const QString& column : {u"LongDD"_s, u"LatDD"_s}) { // a place cannot be without
            if (!form.Item(column)->value().isValid())
                form.Item(column)->setValue(0.0);
        }
        m_places.setIDcLocalité(id);
        const bool saved = m_places.Save(form, parent);
        NameCreation::passOn(m_places, form.Item(0)->TextError());
        if (!saved)
            refuse(form, name, u"Localité impossible à enregistrer"_s);
        m_job.names.forget(data::Localité, name); // rows below may name it as their parent
        ++(id > 0 ? m_job.report.changed : m_job.report.added);
    }

private:
    qint32 parentOf(const QStringList& cells)
    {
        const ImportColumn* column = m_job.column(importParent);
        const QString name = ImportJob::cell(cells, column);
        return name.isEmpty() ? 0 : m_job.resolve(data::Localité, name, column->field.caption).value_or(0);
    }

    bool isThere(const QString& name, qint32 parent) const
    {
        const auto rows = m_database.OpenRecordset(u"SELECT [CodeRegion] FROM [Localités] WHERE [Localité]="_s + texte(name)
                                                   + u" AND [ID Type]>=0"_s);
        for (; !rows->EOF_(); rows->MoveNext()) {
            const QString code = rows->Value(0).toString();
            const qint32 above = code.contains(u'/') ? code.section(u'/', -2, -2).toInt() : 0;
            if (above == parent)
                return true;
        }
        return false;
    }

    reference::Cl_Localité m_places;
};

// --- Taxa ------------------------------------------------------------------------------------------

/// Names are found and added through the index of all names, which does not search the table for each row.
class TaxonRows : public ListRows {
public:
    explicit TaxonRows(ImportJob& job)
        : ListRows(job), m_taxa(m_world), m_index(m_database, job.session.surroundings().clock)
    {
    }

    void take(const QStringList& cells) override
    {
        if (const qint32 id = standing(cells, u"Taxons"_s); id > 0)
            return change(id, cells);
        const Name name = nameOf(cells);
        // What could make the row refused is read before anything is written.
        const QList<QPair<QString, QVariant>> more = details(cells);
        const qint32 parent = parentOf(name, name.rank);
        qint32 id = known(name, parent);
        if (id > 0) {
            ++m_job.report.present;
            return;
        }
        id = add(name.rank, parent, name.parts[size_t(name.rank)], name.authors);
        writeDetails(id, more);
        ++m_job.report.added;
    }

private:
    /// The parts of a name by rank, 1 to 4.
    struct Name {
        std::array<QString, 5> parts;
        QString authors;
        int rank = 0;
    };

    Name nameOf(const QStringList& cells) const
    {
        const PlantName whole = PlantName::of(cell(cells, u"Nom Complet"_s));
        const auto either = [&](const QString& key, const QString& part) {
            const QString text = cell(cells, key);
            return text.isEmpty() ? part : text;
        };
        Name name;
        const bool family = whole.species.isEmpty() && whole.genus.endsWith(u"aceae"_s);
        name.parts[1] = either(u"ID Famille"_s, family ? whole.genus : QString());
        name.parts[2] = either(u"ID Genre"_s, family ? QString() : whole.genus);
        name.parts[3] = either(u"ID Espèce"_s, whole.species);
        const QString infra = cell(cells, u"ID Infra"_s);
        const QString mark = cell(cells, u"@Rang"_s);
        name.parts[4] = infra.isEmpty() ? whole.infra : (mark + u' ' + infra).trimmed();
        name.authors = either(u"Auteurs"_s, whole.authors);
        for (int rank = 1; rank <= 4; ++rank) {
            name.parts[size_t(rank)] = reference::Cl_Taxon::storedName(name.parts[size_t(rank)], rank);
            if (!name.parts[size_t(rank)].isEmpty())
                name.rank = rank;
        }
        if (name.rank == 0 || (name.rank > 2 && name.parts[2].isEmpty()) || (name.rank == 4 && name.parts[3].isEmpty()))
            throw RowRefused{u"La ligne ne nomme aucun taxon complet"_s, cells.join(u' ').simplified()};
        return name;
    }

    qint32 known(const Name& name, qint32 parent) const
    {
        const QList<qint32> alike = m_index.find(name.rank, parent, name.parts[size_t(name.rank)]);
        for (const qint32 id : alike) {
            const QString authors = m_index.authors(id);
            if (authors.isEmpty() || name.authors.isEmpty() || jet::text::equal(authors, name.authors))
                return id;
        }
        if (!alike.isEmpty() && name.rank <= 2)
            throw RowRefused{u"Une famille ou un genre de ce nom existe avec d'autres auteurs"_s, name.parts[size_t(name.rank)]};
        return 0;
    }

    qint32 parentOf(const Name& name, int rank)
    {
        if (rank == 1)
            return 0;
        const int above = rank - 1;
        const QString& part = name.parts[size_t(above)];
        if (above == 1 && part.isEmpty()) { // a genus that stands already needs no family
            const QList<qint32> standing = rank == 2 ? m_index.find(2, 0, name.parts[2]) : QList<qint32>();
            if (!standing.isEmpty())
                return m_index.familyOf(standing.first());
            throw RowRefused{u"La famille manque"_s, name.parts[2]};
        }
        const qint32 higher = above == 3 ? parentOf(name, 3) : 0;
        const QList<qint32> found = m_index.find(above, higher, part);
        if (!found.isEmpty())
            return found.first();
        return add(above, above == 2 ? parentOf(name, 2) : higher, part, {});
    }

    qint32 add(int rank, qint32 parent, const QString& name, const QString& authors)
    {
        if (authors.size() > widestName || m_index.fullName(rank, parent, name).size() > widestName)
            throw RowRefused{u"Le nom ou ses auteurs dépassent 255 caractères"_s, name};
        return m_index.add(rank, parent, name, authors);
    }

    QList<QPair<QString, QVariant>> details(const QStringList& cells)
    {
        QList<QPair<QString, QVariant>> values;
        for (const QString& key : {u"DateOriginal"_s, u"TypeSpecimen"_s, u"Commentaire"_s}) {
            const ImportColumn* column = m_job.column(key);
            const QVariant value = column ? column->values->read(cells.value(column->position)) : QVariant();
            if (value.isValid())
                values.append({key, value});
        }
        return values;
    }

    void writeDetails(qint32 id, const QList<QPair<QString, QVariant>>& values)
    {
        if (values.isEmpty())
            return;
        const auto rows = m_database.OpenRecordset(u"Taxons"_s, jet::RecordsetType::Table);
        rows->SetIndex(u"PrimaryKey"_s);
        rows->Seek(u"="_s, {id});
        rows->Edit();
        for (const auto& [column, value] : values)
            rows->SetValue(column, value);
        rows->Update();
    }

    /// Names stay as they are: they change in their own form, where what follows from it is asked.
    void change(qint32 id, const QStringList& cells)
    {
        editing::Cl_Editions form(m_world.editing);
        m_taxa.FillTabEdit(form, id, m_taxa.IDparent(id));
        const QVariant name = form.Item(u"Nom Complet"_s)->value();
        fill(form, cells, true);
        form.Item(u"Nom Complet"_s)->setValue(name);
        m_taxa.setIDctaxon(id);
        const bool saved = m_taxa.Save(form);
        NameCreation::passOn(m_taxa, m_quiet.said());
        if (!saved)
            throw RowRefused{u"Taxon impossible à enregistrer"_s, m_quiet.takeSaid()};
        ++m_job.report.changed;
    }

    reference::Cl_Taxon m_taxa;
    reference::TaxonIndex m_index;
};

} // namespace

std::unique_ptr<ImportRows> makeTaxonRows(ImportJob& job) { return std::make_unique<TaxonRows>(job); }
std::unique_ptr<ImportRows> makePlaceRows(ImportJob& job) { return std::make_unique<PlaceRows>(job); }
std::unique_ptr<ImportRows> makePersonRows(ImportJob& job) { return std::make_unique<PersonRows>(job); }

} // namespace app
