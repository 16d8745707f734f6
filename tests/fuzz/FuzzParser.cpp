// Feeds texts to the parser: each is a statement, an expression and a rule. What comes back must
// be a tree, which is walked to its leaves and destroyed, or a jet::Error that is filled in.
#include "Collection.h"
#include "TreeText.h"
#include "jet/Error.h"
#include "jet/sql/Parser.h"

#include <QDir>
#include <QFile>
#include <cstdint>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

constexpr int numbers[] = {3075, 3129, 3131, 3134, 3138, 3141, 3142, 3144, 3360};

template<typename Action> void expectTreeOrError(Action action)
{
    try {
        action();
    } catch (const jet::Error& error) {
        bool known = false;
        for (int number : numbers)
            known = known || error.number() == number;
        if (!known || error.description().isEmpty())
            std::abort();
    }
}

void writeSeeds(const QDir& folder)
{
    const QString source = QString::fromLatin1(HERBORA_SOURCE);
    for (const CollectedStatement& statement :
         readCollection(source + u"/tests/jet/statements/collection.txt"_s)) {
        QFile seed(folder.filePath(u"collection-%1"_s.arg(statement.line)));
        if (seed.open(QIODevice::WriteOnly))
            seed.write(statement.text.toUtf8());
    }
}

} // namespace

// The collection of statements goes into the first corpus folder, before the fuzzer reads it.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    for (int i = 1; i < *argc; ++i) {
        const QString argument = QString::fromLocal8Bit((*argv)[i]);
        if (argument.startsWith(u'-') || !QDir(argument).exists())
            continue;
        writeSeeds(QDir(argument));
        break;
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    expectTreeOrError([&] { treeText(jet::sql::parseStatement(text)); });
    expectTreeOrError([&] { treeText(*jet::sql::parseExpression(text)); });
    expectTreeOrError([&] { treeText(*jet::sql::parseRule(text, u"Colonne"_s)); });
    return 0;
}
