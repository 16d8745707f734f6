// A small file of the engine for tests: taxa, plants and their determinations.
#pragma once

#include "jet/Database.h"
#include "jet/Recordset.h"
#include "support/Print.h"

#include <QDateTime>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

/// The number of the engine's error that `work` fails with; 0 when it does not fail.
template<typename Work> int errorOf(Work&& work)
{
    try {
        work();
    } catch (const jet::Error& error) {
        return error.number();
    }
    return 0;
}

class EngineFixture : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(folder.isValid());
        db = jet::Database::Create(folder.filePath(u"essai.hbx"_s),
                                   u";LANGID=0x0409;CP=1252;COUNTRY=0"_s);
        db->AppendTable(taxa());
        db->AppendTable(plants());
    }

    static jet::Field field(const QString& name, jet::DataType type, int size = 0)
    {
        jet::Field made;
        made.Name = name;
        made.Type = type;
        made.Size = size;
        return made;
    }

    static jet::Field counter(const QString& name)
    {
        jet::Field made = field(name, jet::DataType::Long);
        made.AutoIncrement = true;
        return made;
    }

    static jet::Index index(const QString& name, const QList<jet::IndexField>& fields,
                            bool unique = false)
    {
        jet::Index made;
        made.Name = name;
        made.Fields = fields;
        made.Unique = unique;
        return made;
    }

    static jet::Index primary(const QString& column)
    {
        jet::Index made = index(u"PrimaryKey"_s, {{column}}, true);
        made.Primary = true;
        return made;
    }

    static jet::TableDef taxa()
    {
        using enum jet::DataType;
        jet::TableDef table;
        table.Name = u"Taxons"_s;
        table.Fields = {
            counter(u"ID Taxons"_s),  field(u"Nom"_s, Text, 60),   field(u"Auteurs"_s, Text, 60),
            field(u"Rang"_s, Long),   field(u"Valide"_s, Boolean), field(u"Altitude"_s, Double),
            field(u"Décrit"_s, Date), field(u"Notes"_s, Memo),     field(u"Photo"_s, LongBinary)};
        table.Fields[1].Required = true;
        table.Indexes = {primary(u"ID Taxons"_s),
                         index(u"Unique"_s, {{u"Nom"_s}, {u"Auteurs"_s}}, true),
                         index(u"Rang"_s, {{u"Rang"_s, true}, {u"Nom"_s}})};
        return table;
    }

    static jet::TableDef plants()
    {
        using enum jet::DataType;
        jet::TableDef table;
        table.Name = u"Individus"_s;
        table.Fields = {counter(u"ID Individus"_s), field(u"Numéro"_s, Text, 20),
                        field(u"ID Taxons"_s, Long)};
        table.Indexes = {primary(u"ID Individus"_s), index(u"ID Taxons"_s, {{u"ID Taxons"_s}})};
        return table;
    }

    void addTaxon(const QString& name, const QVariant& authors = {}, const QVariant& rank = {})
    {
        const auto rows = db->OpenRecordset(u"Taxons"_s, jet::RecordsetType::Table);
        rows->AddNew();
        rows->SetValue(u"Nom", name);
        rows->SetValue(u"Auteurs", authors);
        rows->SetValue(u"Rang", rank);
        rows->Update();
    }

    void addPlant(const QString& number, const QVariant& taxon)
    {
        const auto rows = db->OpenRecordset(u"Individus"_s, jet::RecordsetType::Table);
        rows->AddNew();
        rows->SetValue(u"Numéro", number);
        rows->SetValue(u"ID Taxons", taxon);
        rows->Update();
    }

    /// All rows of a statement: values joined by "|", Null as "-".
    QStringList rowsOf(const QString& source)
    {
        const auto rows = db->OpenRecordset(source, jet::RecordsetType::Snapshot);
        QStringList lines;
        for (const auto& row : rows->GetRows(1'000'000)) {
            QStringList values;
            for (const QVariant& value : row)
                values += value.isValid() ? value.toString() : u"-"_s;
            lines += values.join(u'|');
        }
        return lines;
    }

    QVariant valueOf(const QString& source) { return db->OpenRecordset(source)->Value(0); }

    QTemporaryDir folder;
    std::unique_ptr<jet::Database> db;
};
