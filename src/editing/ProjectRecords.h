// Records, fields and descriptor lists of the open project, as descriptors ask for them.
#pragma once

#include "data/Dictionary.h"
#include "data/PropertyStore.h"
#include "editing/Cl_Edition.h"
#include "jet/Database.h"

#include <QHash>

namespace editing {

/// A field of the dictionary as a form edits it, not bound to a record.
addin::ChpEditionPtr fieldOf(const data::FieldRecord& field, const QString& module);

/// Reads from the project's file. The record that a form shows is read once for all its fields: the last one of
/// each module is kept, as are descriptor lists, until anything is written to the file, whoever writes it. What it
/// is made of must outlive it. Failures are jet::Error.
class ProjectRecords : public RecordSource {
public:
    ProjectRecords(jet::Database& database, const data::Dictionary& dictionary, data::PropertyStore& store);

    /// All columns but pictures, under their names in the table and in the dictionary. Empty when there is none.
    QVariantMap record(const QString& module, qint32 id) override;
    QStringList descriptors(const QString& module, const QString& column) override;
    bool setDescriptors(const QString& module, const QString& column, const QStringList& items) override;
    addin::TabEditions fields(const QString& module) override;
    QString label(const QString& module) const override; ///< The module's name where it has no row.

    /// Forgets what is kept; for changes of definitions.
    void forget();
    qint64 reads() const { return m_reads; } ///< Records read from the file so far.

private:
    struct Kept {
        qint32 id = 0;
        QVariantMap values;
    };

    bool mayKeep();
    QVariantMap read(const QString& module, qint32 id);
    QStringList readList(const QString& module, const QString& column) const;

    jet::Database& m_database;
    const data::Dictionary& m_dictionary;
    data::PropertyStore& m_store;
    QHash<QString, Kept> m_kept;                          ///< By module.
    QHash<QPair<QString, QString>, QStringList> m_lists;  ///< By module and column.
    qint64 m_changes = -1; ///< Of the file, when the records were kept.
    qint64 m_reads = 0;
};

/// Shows the identifiers themselves, where no reference classes are at hand.
class IdentifierNames : public ReferenceNames {
public:
    QString botaniste(qint32 id) const override;
    QString localité(qint32 id) const override;
    QString taxon(qint32 id) const override;
    QString taxonAuteurs(qint32 id) const override;
    QString famille(qint32 taxon) const override;
    QString rang(qint32 taxon) const override;
    QString lien(const QString& module, const QString& ids) const override;
};

} // namespace editing
