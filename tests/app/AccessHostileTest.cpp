// Conversion of damaged Access files: copies of the samples with bytes flipped, pages exchanged, ends cut off.
//
// Whatever the file, the conversion gives a project or says why not; it leaves no half of one, keeps to ten seconds, and
// the reader to a memory that the file's size bounds. HERBORA_MUTATIONS sets how many copies are tried.
#include "app/AccessImport.h"
#include "jet/access/PageFormat.h"
#include "support/Project.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QRandomGenerator>

#if defined(__SANITIZE_ADDRESS__)
// The compiler brings these functions of its sanitizer without their header.
extern "C" {
int __sanitizer_install_malloc_and_free_hooks(void (*taken)(const volatile void*, size_t),
                                              void (*given)(const volatile void*));
size_t __sanitizer_get_allocated_size(const volatile void* block);
}
#endif

namespace {

using namespace Qt::StringLiterals;
using namespace jet::access;

constexpr qint64 longest = 10000;       ///< Milliseconds of one conversion.
constexpr qint64 fixedMemory = 1 << 18; ///< What a reader takes whatever the file: texts, tables of the library.

/// Bytes that the process has from the allocator, and the most it had.
struct Heap {
    static inline qint64 now = 0;
    static inline qint64 most = 0;
#if defined(__SANITIZE_ADDRESS__)
    static void taken(const volatile void*, size_t size)
    {
        now += qint64(size);
        most = std::max(most, now);
    }
    static void given(const volatile void* block)
    {
        if (block)
            now -= qint64(__sanitizer_get_allocated_size(block));
    }
    static bool watch()
    {
        static const bool installed = __sanitizer_install_malloc_and_free_hooks(&taken, &given) != 0;
        return installed;
    }
#else
    static bool watch() { return false; }
#endif
};

/// Damages a copy, in a way that the number gives.
class Mutation {
public:
    Mutation(QByteArray& bytes, quint32 seed) : m_bytes(bytes), m_random(seed) {}

    void apply(int kind)
    {
        switch (kind % 5) {
        case 0: return flip(1 + m_random.bounded(30), 0);
        case 1: return exchangePages();
        case 2: m_bytes.truncate(m_random.bounded(int(m_bytes.size()))); return;
        case 3: return changeNumbers();
        default: return flip(1 + m_random.bounded(6), 3 * pageSize()); // where the system tables are defined
        }
    }

private:
    int pageSize() const { return m_bytes[header::version] == 0 ? jet3.pageSize : jet4.pageSize; }

    void flip(int count, int within)
    {
        const int bound = within > 0 ? within : int(m_bytes.size());
        for (int i = 0; i < count; ++i) {
            char& byte = m_bytes[m_random.bounded(bound)];
            byte = char(byte ^ (1 << m_random.bounded(8)));
        }
    }

    void exchangePages()
    {
        const int size = pageSize();
        const int pages = int(m_bytes.size()) / size;
        for (int i = 0; i < 1 + m_random.bounded(4); ++i) {
            const int one = m_random.bounded(1, pages) * size;
            const int other = m_random.bounded(1, pages) * size;
            const QByteArray kept = m_bytes.mid(one, size);
            m_bytes.replace(one, size, m_bytes.mid(other, size));
            m_bytes.replace(other, size, kept);
        }
    }

    /// Words at the starts of pages, where counts, lengths, owners and pointers are.
    void changeNumbers()
    {
        static const quint32 numbers[] = {0, 1, 2, 0x7FFF, 0x8000, 0xFFFF, 0x7FFFFFFF, 0xFFFFFFFF, 0x40000000};
        const int size = pageSize();
        for (int i = 0; i < 1 + m_random.bounded(8); ++i) {
            const int at = m_random.bounded(1, int(m_bytes.size()) / size) * size + m_random.bounded(96);
            const quint32 number = m_random.bounded(4) == 0 ? m_random.bounded(quint32(m_bytes.size() / size))
                                                            : numbers[m_random.bounded(int(std::size(numbers)))];
            qToLittleEndian(number, m_bytes.data() + at);
        }
    }

    QByteArray& m_bytes;
    QRandomGenerator m_random;
};

/// Reads everything and keeps nothing.
void readAll(const QString& path)
{
    AccessFile file(path);
    for (const TableEntry& entry : file.tables()) {
        try {
            const TableDefinition table = file.definition(entry);
            AccessFile::tableDef(file.pages(), table, file.propertiesOf(entry.name));
            Rows rows(file.pages(), table);
            while (rows.next()) {
                for (int column = 0; column < int(table.columns.size()); ++column)
                    rows.value(column);
            }
        } catch (const jet::Error& error) {
            EXPECT_FALSE(error.description().isEmpty());
        }
    }
    file.relations();
    file.queries();
    file.databaseProperties();
}

class AccessHostile : public testing::Test {
protected:
    void SetUp() override
    {
        const QDir dir(qEnvironmentVariable("HERBORA_SOURCE") + u"/tests/jet/access/samples"_s);
        for (const QString& name : dir.entryList({u"*.mdb"_s, u"*.accdb"_s, u"*.hbx"_s}, QDir::Files)) {
            QFile file(dir.filePath(name));
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            m_samples << file.readAll();
        }
        QLoggingCategory::setFilterRules(u"herbora.*=false"_s);
    }
    void TearDown() override { QLoggingCategory::setFilterRules({}); }

    void convert(const QByteArray& bytes, const std::string& what)
    {
        const QString source = project.path(u"essai.mdb"_s);
        const QString target = project.path(u"essai.hbx"_s);
        QFile file(source);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes);
        file.close();
        readWithin(source, bytes.size(), what);
        QElapsedTimer clock;
        clock.start();
        QString said;
        try {
            said = app::convertAccess(project.session.surroundings(), {source, target}, project.progression);
            EXPECT_TRUE(QFileInfo::exists(target)) << what;
            ++converted;
        } catch (const jet::Error& error) {
            said = error.description();
            EXPECT_FALSE(QFileInfo::exists(target)) << what;
            EXPECT_GT(error.number(), 0) << what;
        }
        EXPECT_FALSE(said.isEmpty()) << what;
        slowest = std::max(slowest, clock.elapsed());
        EXPECT_LE(clock.elapsed(), longest) << what;
        QFile::remove(target);
        EXPECT_EQ(QDir(project.folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList{u"essai.mdb"_s}) << what;
        project.progression.steps.clear();
    }

    /// The heap while everything is read.
    void readWithin(const QString& path, qint64 size, const std::string& what)
    {
        const bool watched = Heap::watch();
        const qint64 before = Heap::now;
        Heap::most = Heap::now;
        try {
            readAll(path);
        } catch (const jet::Error& error) {
            EXPECT_FALSE(error.description().isEmpty()) << what;
        }
        if (!watched)
            return;
        const qint64 used = Heap::most - before;
        greediest = std::max(greediest, double(used) / double(std::max<qint64>(size, 1 << 16)));
        EXPECT_LE(used, 4 * size + fixedMemory) << what;
    }

    support::TestProject project;
    QList<QByteArray> m_samples;
    int converted = 0;
    qint64 slowest = 0;
    double greediest = 0;
};

TEST_F(AccessHostile, GivesAProjectOrAMessageForEveryDamagedCopy)
{
    bool given = false;
    const int wanted = qEnvironmentVariableIntValue("HERBORA_MUTATIONS", &given);
    const int count = given ? wanted : 220;
    for (int i = 0; i < count && !HasFailure(); ++i) {
        QByteArray bytes = m_samples[i % m_samples.size()];
        Mutation(bytes, quint32(i)).apply(i / int(m_samples.size()));
        convert(bytes, "copy " + std::to_string(i));
    }
    RecordProperty("converted", converted);
    std::cout << count << " copies, " << converted << " converted, slowest " << slowest << " ms, memory of the reader up to "
              << greediest << " times the file\n";
}

} // namespace
