// The reader of Access files, beside mdb-export and on its own.
#include "Oracle.h"
#include "Samples.h"
#include "jet/access/AccessFile.h"

using namespace Qt::StringLiterals;
using namespace jet::access;

namespace {

/// Names the sample in messages.
struct Sample {
    QString path;
};
void PrintTo(const Sample& sample, std::ostream* stream) { *stream << sample.path.toStdString(); }

std::string fileName(const testing::TestParamInfo<Sample>& info)
{
    QString name = QFileInfo(info.param.path).completeBaseName() + QFileInfo(info.param.path).suffix();
    name.removeIf([](QChar c) { return !c.isLetterOrNumber(); });
    return name.toStdString();
}

QList<Sample> everySample()
{
    QList<Sample> all;
    for (const QString& path : samples::all())
        all.append({path});
    return all;
}

class EverySample : public testing::TestWithParam<Sample> {};

QStringList tableNames(AccessFile& file)
{
    QStringList names;
    for (const TableEntry& table : file.tables())
        names << table.name;
    return names;
}

/// The rows of a table as the reader gives them, with what the other one needs to be compared with.
struct Read {
    QStringList columns;
    QList<jet::DataType> types;
    QList<QVariantList> rows;
    qint64 announced = 0;
};

Read readAll(AccessFile& file, const TableEntry& entry)
{
    const TableDefinition definition = file.definition(entry);
    const jet::TableDef table = AccessFile::tableDef(file.pages(), definition, file.propertiesOf(entry.name));
    Read result;
    result.announced = definition.rowCount;
    for (const jet::Field& field : table.Fields) {
        result.columns << field.Name;
        result.types << field.Type;
    }
    Rows rows(file.pages(), definition);
    while (rows.next()) {
        QVariantList values;
        for (int column = 0; column < int(result.columns.size()); ++column) {
            const Cell cell = rows.value(column);
            EXPECT_EQ(cell.fault.toStdString(), "");
            values << cell.value;
        }
        result.rows << values;
    }
    EXPECT_EQ(rows.damagedRows() + rows.damagedPages(), 0);
    return result;
}

bool sameRow(const Read& read, const QVariantList& row, const oracle::Table& expected, const QStringList& printed)
{
    for (int column = 0; column < int(read.columns.size()); ++column) {
        const qsizetype other = expected.columns.indexOf(read.columns[column]);
        if (!oracle::agrees(row[column], read.types[column], printed.value(other, u"<absent>"_s)))
            return false;
    }
    return true;
}

QString text(const QVariantList& row)
{
    QStringList cells;
    for (const QVariant& value : row)
        cells << oracle::shown(value).left(60);
    return cells.join(u" | "_s);
}

/// Each row has its like. Rows that were moved come in another order: one reader meets them where they stood, the
/// other where they lie.
void compare(const QString& name, const Read& read, const oracle::Table& expected)
{
    ASSERT_EQ(read.columns.size(), expected.columns.size()) << name.toStdString();
    EXPECT_EQ(read.rows.size(), expected.rows.size()) << name.toStdString();
    QList<QVariantList> mine;
    QList<QStringList> theirs;
    for (qsizetype i = 0; i < qMax(read.rows.size(), expected.rows.size()); ++i) {
        const bool both = i < read.rows.size() && i < expected.rows.size();
        if (both && sameRow(read, read.rows[i], expected, expected.rows[i]))
            continue;
        if (i < read.rows.size())
            mine << read.rows[i];
        if (i < expected.rows.size())
            theirs << expected.rows[i];
    }
    for (const QVariantList& row : mine) {
        const auto like = std::find_if(theirs.begin(), theirs.end(), [&](const QStringList& printed) {
            return sameRow(read, row, expected, printed);
        });
        if (like == theirs.end())
            ADD_FAILURE() << name.toStdString() << ": only here: " << text(row).toStdString();
        else
            theirs.erase(like);
    }
    for (const QStringList& printed : theirs.mid(0, 5))
        ADD_FAILURE() << name.toStdString() << ": only there: " << printed.join(u" | "_s).left(300).toStdString();
}

} // namespace

TEST_P(EverySample, HasTheSameCellsAsTheOtherReaderSees)
{
    if (!oracle::isThere())
        GTEST_SKIP() << "mdb-export is not installed";
    AccessFile file(GetParam().path);
    QStringList names = tableNames(file);
    QStringList expected = oracle::tables(GetParam().path);
    names.sort();
    expected.sort();
    EXPECT_EQ(names.join(u'|').toStdString(), expected.join(u'|').toStdString());
    for (const TableEntry& table : file.tables())
        compare(table.name, readAll(file, table), oracle::table(GetParam().path, table.name));
    EXPECT_TRUE(file.remarks().isEmpty()) << file.remarks().join(u'\n').toStdString();
}

INSTANTIATE_TEST_SUITE_P(Samples, EverySample, testing::ValuesIn(everySample()), fileName);
