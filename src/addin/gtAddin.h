// The interface of a module's provider.
#pragma once

#include "addin/ChpEdition.h"

#include <QByteArray>
#include <QtPlugin>

namespace addin {

class Base;

/// Version of these headers. A library built for another one is refused by name.
inline constexpr int interfaceVersion = 1;

/// Rows of the module's table as an add-in reads them; the host implements it.
class Rows {
public:
    virtual ~Rows() = default;
    virtual bool atEnd() const = 0;
    virtual void moveFirst() = 0;
    virtual void moveNext() = 0;
    virtual QVariant value(const QString& column) const = 0; ///< Invalid for Null or an unknown column.
};

/// What serves one module. The host owns nothing of it: the library keeps it, and stays loaded, until the program ends.
class gtAddin {
public:
    virtual ~gtAddin() = default;

    /// Records are edited through the generated record editor.
    virtual bool DynamicEdit() const { return true; }
    /// The combined unique key of the module includes `ID Individus`.
    virtual bool IndividuMixteUnique() const { return false; }
    /// Only one record of the module for each individual.
    virtual bool IndividuUnique() const { return false; }
    /// Text of the module's menu entries; empty: the display name.
    virtual QString MenuString() const { return {}; }
    /// The module wants `ItemAction` to be called.
    virtual bool RaiseEvents() const { return false; }
    virtual void CancelEdition() {}
    /// A picture file (PNG, SVG …); empty for the default icon.
    virtual QByteArray Icone() const { return {}; }
    /// Another version than the project has makes the program take over the definitions again.
    virtual QString Version() const = 0;
    /// The fields of the module, from which the dictionary is written. Asked again for each form.
    virtual TabEditions GetTabEditions() = 0;
    /// Name of the module and of its table, up to 30 characters, without brackets, points, "!", ";", "|" and quotes.
    virtual QString NomModule() const = 0;
    /// Display name of one record.
    virtual QString NomObjet() const = 0;
    /// The rows of the module's table, handed over by the host once the table is there; null until then and again when
    /// the project is closed.
    virtual Rows* Recordset() { return m_rows; }
    virtual void SetRecordset(Rows* rows) { m_rows = rows; }

    /// A list item is added, deleted or edited ("ADD_ITEM", "DELETE_ITEM", "EDIT_ITEM"); two arguments: the field's
    /// column and the item. Setting `cancel` stops it.
    virtual void ItemAction(const QString& action, const QVariantList& arguments, bool& cancel)
    {
        Q_UNUSED(action)
        Q_UNUSED(arguments)
        Q_UNUSED(cancel)
    }

private:
    Rows* m_rows = nullptr;
};

/// The entry object of a library, found through QPluginLoader.
class Plugin {
public:
    virtual ~Plugin() = default;
    /// The headers' version the library was built with: `return addin::interfaceVersion;`
    virtual int InterfaceVersion() const = 0;
    /// Gives the library's module, or nothing. Called once for each opening of a project, on the thread of the opening,
    /// before the module's table is there. The host lives until the program ends.
    virtual gtAddin* Connexion(Base* host) = 0;
};

} // namespace addin

#define HerboraPlugin_iid "org.herbora.Plugin/1"
Q_DECLARE_INTERFACE(addin::Plugin, HerboraPlugin_iid)
