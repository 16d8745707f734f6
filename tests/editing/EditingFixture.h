// What a descriptor is built with, made up.
#pragma once

#include "editing/Cl_Edition.h"
#include "jet/Error.h"
#include "support/Print.h"

#include <QHash>
#include <gtest/gtest.h>

namespace fixture {

using namespace Qt::StringLiterals;

/// Names that show their identifier.
class FakeNames : public editing::ReferenceNames {
public:
    QString botaniste(qint32 id) const override { return u"botaniste "_s + QString::number(id); }
    QString localité(qint32 id) const override { return u"localité "_s + QString::number(id); }
    QString taxon(qint32 id) const override { return u"taxon "_s + QString::number(id); }
    QString taxonAuteurs(qint32 id) const override { return taxon(id) + u" L."_s; }
    QString famille(qint32 taxon) const override { return u"famille de "_s + QString::number(taxon); }
    QString rang(qint32 taxon) const override { return u"rang de "_s + QString::number(taxon); }
    QString lien(const QString& module, const QString& ids) const override
    {
        return u"liens "_s + ids + u" de "_s + module;
    }
};

/// Records in memory, by "12-Mesures".
class FakeRecords : public editing::RecordSource {
public:
    QHash<QString, QVariantMap> rows;
    QHash<QString, QStringList> columns; ///< By module.
    QHash<QString, QStringList> lists;   ///< By "module.column".
    bool broken = false;

    QVariantMap record(const QString& module, qint32 id) override
    {
        answer();
        return rows.value(QString::number(id) + u'-' + module);
    }
    QStringList descriptors(const QString& module, const QString& column) override
    {
        answer();
        return lists.value(module + u'.' + column);
    }
    bool setDescriptors(const QString& module, const QString& column, const QStringList& items) override
    {
        answer();
        lists[module + u'.' + column] = items;
        return true;
    }
    addin::TabEditions fields(const QString& module) override
    {
        answer();
        addin::TabEditions list;
        for (const QString& column : columns.value(module)) {
            auto field = std::make_shared<addin::ChpEdition>();
            field->champ = column;
            list << field;
        }
        return list;
    }
    QString label(const QString& module) const override { return module + u" (étiquette)"_s; }

private:
    void answer() const
    {
        if (broken)
            jet::fail(3049);
    }
};

struct Surroundings {
    qint32 last = 16;
    int rowHeight = 21;
    std::shared_ptr<FakeNames> names = std::make_shared<FakeNames>();
    std::shared_ptr<FakeRecords> records = std::make_shared<FakeRecords>();

    editing::EditingContext context()
    {
        return {[this] { return ++last; }, names, records, rowHeight};
    }
};

} // namespace fixture
