// What may be saved, what is stamped, what dies with what.
#pragma once

#include "data/Dictionary.h"
#include "jet/Database.h"
#include "platform/Clock.h"
#include "platform/Dialogues.h"

#include <exception>
#include <functional>

namespace data {

/// A record was not saved; the text is what the user reads.
class RecordRefused : public std::exception {
public:
    explicit RecordRefused(QString text) : m_text(std::move(text)), m_what(m_text.toUtf8()) {}
    const QString& text() const { return m_text; }
    const char* what() const noexcept override { return m_what.constData(); }

private:
    QString m_text;
    QByteArray m_what;
};

/// One record as it is to be written.
struct RecordValues {
    qint32 id = 0;       ///< 0 for a new record.
    qint32 individu = 0; ///< The owning individual; 0 for a new individual.
    QString keyParent = {}; ///< "125-Déterminations"; empty for none.
    QList<QPair<QString, QVariant>> values = {}; ///< Columns to write; Null is an invalid QVariant.
    bool valid = true;   ///< The form's fields passed their own validation.
};

/// The text of a parent key.
QString parentKey(qint32 id, const QString& module);

class RecordRules {
public:
    RecordRules(jet::Database& database, const Dictionary& dictionary, const platform::Clock& clock,
                platform::Dialogues& dialogues);

    /// Throws RecordRefused with the first message that applies.
    void check(const QString& module, const RecordValues& record) const;
    /// Checks and writes, with the stamps, as one named operation. Gives the record's identifier.
    qint32 save(const QString& module, const RecordValues& record);
    void setLocked(const QString& module, qint32 id, bool locked);

    /// A module locked for the session: its records cannot be saved.
    void setModuleLocked(const QString& module, bool locked);
    bool isModuleLocked(const QString& module) const;

    /// Asks, then deletes the records that are not locked with everything under them: whole or not at all.
    /// Shows the report; gives it, empty when the user said no or it failed.
    QString deleteRecords(const QString& module, const QList<qint32>& selected);

    /// Which modules are served; without it all of the dictionary are. Records of the others cannot be saved.
    std::function<bool(const QString& module)> isConnected;
    QString caption = QStringLiteral("Herbora"); ///< Of the program, in titles.

private:
    using Keys = QMap<QString, QList<qint32>>; ///< Module → identifiers.

    Keys descendants(const QString& module, const QList<qint32>& ids) const;
    Keys owned(const QList<qint32>& individuals) const;
    Keys below(const QString& module, const QList<qint32>& ids) const;
    QList<qint32> childrenOf(const QString& parent, const QList<qint32>& ids, const ModuleRecord& child) const;
    QList<qint32> goneOf(const QString& module, const QList<qint32>& ids) const;
    int reportOwned(const Keys& children, QStringList& report) const;
    int deleteOrphans(const QString& parent, const QList<qint32>& gone, QStringList& report);
    int deleteNow(const QString& module, const QList<qint32>& ids, const Keys& children,
                  QStringList& report);
    /// Sets the links of `Individus` to these records to Null where the record is no more.
    void clearCurrentLinks(const Keys& gone);
    bool askDeletion(const QString& module, const QList<qint32>& ids, qint64 children) const;
    bool isLocked(const QString& module, qint32 id) const;
    const ModuleRecord* savable(const QString& module) const;

    jet::Database& m_database;
    const Dictionary& m_dictionary;
    const platform::Clock& m_clock;
    platform::Dialogues& m_dialogues;
    QStringList m_lockedModules;
};

} // namespace data
