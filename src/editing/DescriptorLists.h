// The vocabularies of list fields, and the records that use them.
#pragma once

#include "data/PropertyStore.h"
#include "jet/Database.h"
#include "platform/Clock.h"
#include "platform/Dialogues.h"
#include "platform/Progression.h"

#include <functional>

namespace editing {

/// Work that may take long; it stops where the user wants that (3059).
using LongWork = std::function<void(platform::Progression&)>;

/// A list field.
struct ListField {
    QString module;
    QString column;
    QString caption;
    int type = 12;         ///< 11 ListeMultiple, 12 ListeSimple.
    bool allowNull = true;
};

/// Reads and changes the descriptor list of a field. Renaming and deleting rewrite the records that use the
/// descriptor, as one operation with the list. Where a rule of the table refuses the rewriting, the records are as
/// before, the list stays changed, and the error is shown; after any other failure both are as before.
class DescriptorLists {
public:
    DescriptorLists(jet::Database& database, data::PropertyStore& store, const platform::Clock& clock,
                    platform::Dialogues& dialogues);

    QStringList items(const ListField& field) const;
    bool add(const ListField& field);                            ///< Asks the text.
    bool rename(const ListField& field, const QString& old);     ///< Asks the new text.
    bool remove(const ListField& field, const QString& item);    ///< Asks; refused where records would be left Null against the rule.
    bool move(const ListField& field, const QString& item, int by); ///< Up (below 0) or down in the list.
    /// Rebuilds the list from the values that records hold. Gives the new list.
    QStringList synchronise(const ListField& field);

    /// Without what a descriptor cannot hold (";", line ends, TABs, double quotation marks), trimmed.
    static QString cleaned(const QString& text);
    /// Trimmed, without empty items and repetitions; the order stays.
    static QStringList normalized(const QStringList& items);

    /// Runs work with its progress shown, and throws what it throws; empty: at once, without a word.
    std::function<void(const QString& title, const LongWork& work)> run;

private:
    void store(const ListField& field, const QStringList& items);
    bool storeAlone(const ListField& field, const QStringList& items, const QString& title);
    QString usersStatement(const ListField& field, const QString& item) const;
    qint64 countUsers(const ListField& field, const QString& item) const;
    qint64 countExact(const ListField& field, const QString& item) const;
    /// What becomes of an item: another text, or Null.
    struct Change {
        ListField field;
        QString old;
        QVariant replacement;
        QStringList items; ///< The list afterwards.
        QString title;
    };
    bool apply(const Change& change);
    void applyWhole(const Change& change, platform::Progression& progression);
    void rewriteRecords(const Change& change, platform::Progression& progression);
    void rewriteSimple(const Change& change);
    void rewriteMultiple(const Change& change, platform::Progression& progression);

    jet::Database& m_database;
    data::PropertyStore& m_store;
    const platform::Clock& m_clock;
    platform::Dialogues& m_dialogues;
};

} // namespace editing
