// The host as an add-in sees it.
#pragma once

#include "addin/ChpEdition.h"

#include <QVariant>

namespace addin {

/// Callbacks into the program, answered from the state of the session and its windows. All may be called at any
/// time on the thread of the call into the add-in; without an open project they answer empty.
class Base {
public:
    virtual ~Base() = default;

    /// Opens the record editor on a record key ("12-Mesures"); false when that cannot be.
    virtual bool EditItem(const QString& key) = 0;
    /// The fields of a record, filled with its values; empty when there is none.
    virtual TabEditions GetEditObject(const QString& module, qint32 id) = 0;
    /// The kind of a file by its content, as a MIME type.
    virtual QString OLEFiletype(const QString& file) = 0;
    /// The text of a stored object; Null when there is none.
    virtual QVariant PropertyGet(const QString& kind, const QString& module, const QString& name) = 0;
    virtual bool PropertyLet(const QString& kind, const QString& module, const QString& name,
                             const QString& value) = 0;
    /// Names of reference rows; the identifier as text where the name is not known.
    virtual QString Botaniste(qint32 id) = 0;
    /// The current determination of an individual: `ID Déterminations`, 0 for none.
    virtual qint32 Détermination(qint32 individu) = 0;
    /// Handle of the main window; 0 without one.
    virtual quintptr Hwnd() = 0;
    /// Path of the open project.
    virtual QString GetFileName() = 0;
    /// The individual that is edited or selected; 0 for none.
    virtual qint32 Individu() = 0;
    virtual QString Localité(qint32 id) = 0;
    /// Statement of the current query.
    virtual QString CurrentSQL() = 0;
    /// Module shown.
    virtual QString ActiveModule() = 0;
    /// Number of selected records.
    virtual int CountSel() = 0;
    /// Mode of the current query: "data", "picture" or "map".
    virtual QString ModeRun() = 0;
    /// Brings the views up to date after the add-in changed the table of a module.
    virtual void UpdateBase(const QString& module) = 0;
    virtual QList<qint32> SelectedIDIndividu() = 0;
    virtual QList<qint32> SelectedIDItems() = 0;
    virtual QList<qint32> AllIDItems() = 0;
    virtual QString Taxon(qint32 id) = 0;
    /// The open database: runs a statement of the dialect. A query gives one list of values a row, an action gives one row
    /// with the number of records affected. On a failure `error` gets the French description.
    virtual QList<QVariantList> mdbase(const QString& statement, QString* error = nullptr) = 0;
    /// The value of a column of a record; Null when there is none.
    virtual QVariant Valeur(const QString& module, qint32 id, const QString& column) = 0;
    /// Shows a form; true when the user confirmed it, with the values in the fields.
    virtual bool Wizard(const QString& title, TabEditions& fields) = 0;
};

} // namespace addin
