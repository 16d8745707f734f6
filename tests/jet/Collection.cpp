#include "Collection.h"

#include <QFile>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

void readOutcome(QStringView words, CollectedStatement& record)
{
    const QStringView first =
        words.left(words.indexOf(u' ') < 0 ? words.size() : words.indexOf(u' '));
    record.outcome = first == u"rows" ? Outcome::Rows : Outcome::Count;
    if (first.size() < words.size())
        record.number = words.sliced(first.size() + 1).toInt();
}

CollectedStatement readRecord(const QStringList& lines, int firstLine)
{
    CollectedStatement record;
    record.line = firstLine;
    QStringList text;
    for (const QString& line : lines) {
        if (line.startsWith(u"-- ")) {
            record.name = line.sliced(3);
        } else if (line.startsWith(u"@@ ")) {
            record.storedQuery = line.sliced(3);
        } else if (line.startsWith(u"=> ")) {
            readOutcome(QStringView(line).sliced(3), record);
        } else if (line.startsWith(u"!! ")) {
            record.outcome = Outcome::Error;
            record.number = QStringView(line).sliced(3).toInt();
        } else {
            text.append(line);
        }
    }
    record.text = text.join(u"\r\n"_s);
    return record;
}

} // namespace

std::vector<CollectedStatement> readCollection(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QString content = QString::fromUtf8(file.readAll());
    if (content.endsWith(u'\n'))
        content.chop(1);
    std::vector<CollectedStatement> records;
    QStringList lines;
    int lineNumber = 1;
    int firstLine = 1;
    const auto finish = [&] {
        CollectedStatement record = readRecord(lines, firstLine);
        if (!record.text.isEmpty())
            records.push_back(std::move(record));
        lines.clear();
        firstLine = lineNumber + 1;
    };
    for (const QString& line : content.split(u'\n')) {
        if (line == u"----")
            finish();
        else
            lines.append(line);
        ++lineNumber;
    }
    finish();
    return records;
}

QString statementsFile(const QString& name)
{
    return qEnvironmentVariable("HERBORA_SOURCE", u"."_s) + u"/tests/jet/statements/"_s + name;
}
