// A project with an add-ins folder that a test fills.
#pragma once

#include "support/Project.h"

#include <QDir>
#include <QFile>

/// Each test has its own copies of the libraries: one that was loaded stays loaded.
class AddinProject : public support::TestProject {
public:
    QString addins() const { return folder.filePath(QStringLiteral("addins")); }
    QString library(const QString& name) const { return addins() + QLatin1Char('/') + name + QStringLiteral(".so"); }
    /// Puts a test library (or the example, "Dendrometrie") into the folder, under another name where one is given.
    void install(const QString& kind, const QString& name = {})
    {
        ASSERT_TRUE(QDir().mkpath(addins()));
        const QString source = kind == QStringLiteral("Dendrometrie")
                                   ? QStringLiteral(EXAMPLE_ADDIN)
                                   : QStringLiteral(TEST_ADDINS "/") + kind + QStringLiteral(".so");
        ASSERT_TRUE(QFile::copy(source, library(name.isEmpty() ? kind : name))) << source.toStdString();
    }
    void remove(const QString& name) { ASSERT_TRUE(QFile::remove(library(name))); }
    bool reopen()
    {
        session.close();
        return open();
    }
    QStringList moduleNames() const
    {
        QStringList names;
        for (const data::ModuleRecord& module : session.modules())
            names << module.name;
        return names;
    }
};
