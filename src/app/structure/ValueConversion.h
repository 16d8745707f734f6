// What becomes of a value when its field gets another type.
#pragma once

#include "jet/Database.h"

#include <QHash>
#include <QVariant>

namespace app {

/// A value of the new type. Null stays Null.
struct ConvertedValue {
    enum Outcome {
        Exact,
        Approximate, ///< Rounded or cut: something of it is lost.
        Impossible,  ///< It becomes Null.
    };
    QVariant value;
    Outcome outcome = Exact;
};

/// Converts the values of one field. Names of taxa, localities and collectors are read once, when they are first
/// needed; of several rows with one name the first is taken.
class ValueConversion {
public:
    ValueConversion(jet::Database& database, int from, int to);

    ConvertedValue operator()(const QVariant& value) const;
    /// A value as a user reads it, for a preview.
    QString shown(const QVariant& value) const;

private:
    ConvertedValue fromText(const QString& text) const;
    ConvertedValue fromNumber(double number) const;
    ConvertedValue toText(const QString& text) const;
    ConvertedValue toListItem(const QString& text) const;
    ConvertedValue toReference(const QString& text) const;
    void readNames(int type) const;

    jet::Database& m_database;
    int m_from;
    int m_to;
    mutable int m_read = -1; ///< Type whose names are read.
    mutable QHash<QString, qint32> m_ids; ///< By folded name.
    mutable QHash<qint32, QString> m_names;
};

/// Whether a field may get that type at all: links cannot be made of values, nor values of links.
bool canConvert(int from, int to);

} // namespace app
