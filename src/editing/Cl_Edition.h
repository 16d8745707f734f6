// One field of one record: its value, its texts, its operators.
#pragma once

#include "addin/ChpEdition.h"

#include <QString>
#include <QStringList>
#include <QVariant>
#include <functional>
#include <memory>

namespace editing {

class Cl_Editions;
struct DisplayFormat;

/// Names behind identifiers. The reference classes implement it; `IdentifierNames` shows the identifiers.
class ReferenceNames {
public:
    virtual ~ReferenceNames() = default;
    virtual QString botaniste(qint32 id) const = 0;
    virtual QString localité(qint32 id) const = 0;
    virtual QString taxon(qint32 id) const = 0;             ///< Without authors.
    virtual QString taxonAuteurs(qint32 id) const = 0;
    virtual QString famille(qint32 taxon) const = 0;
    virtual QString rang(qint32 taxon) const = 0;
    /// Text of the records a link field holds for an individual.
    virtual QString lien(const QString& module, const QString& ids) const = 0;
};

/// Where values, descriptor lists and sub-records come from.
class RecordSource {
public:
    virtual ~RecordSource() = default;
    /// All columns of one record, read once; empty when there is none.
    virtual QVariantMap record(const QString& module, qint32 id) = 0;
    virtual QStringList descriptors(const QString& module, const QString& column) = 0;
    virtual bool setDescriptors(const QString& module, const QString& column, const QStringList& items) = 0;
    /// The fields of a module, unbound.
    virtual addin::TabEditions fields(const QString& module) = 0;
    virtual QString label(const QString& module) const = 0;
};

/// A container of editing controls: a form, or a test.
class ControlContainer {
public:
    virtual ~ControlContainer() = default;
    virtual int controlCount() const = 0;
    virtual bool hasControl(const QString& name) const = 0;
    /// Adds a control of the class ("Phylar.UserText" …) bound to the descriptor.
    virtual void addControl(const QString& className, const QString& name, class Cl_Edition& parent) = 0;
};

/// What a descriptor is built with: the counter of its session, names, records. Shared by all of a session.
struct EditingContext {
    std::function<qint32()> nextId;
    std::shared_ptr<ReferenceNames> names;
    std::shared_ptr<RecordSource> records;
    int rowHeight = 24; ///< Standard row height of the application, in pixels.
};

/// The actions that a control reports.
enum class EditAction { Click, Refresh, Edit, Change };

/// Wraps one field record. Every operation traps its errors and gives a neutral result; none asks or shows anything.
class Cl_Edition {
public:
    explicit Cl_Edition(const EditingContext& context);
    ~Cl_Edition();
    Cl_Edition(const Cl_Edition&) = delete;
    Cl_Edition& operator=(const Cl_Edition&) = delete;

    qint32 Idclasse() const { return m_id; } ///< Unique within the session.
    QString key() const;                     ///< "17-key"

    int ctype() const;
    void setCtype(int type);
    QString champ() const;
    void setChamp(const QString& column);
    bool Locked() const;
    void setLocked(bool locked);
    /// The field's own error, else "Valeur nulle non autorisée pour ce champ" where that applies.
    QString TextError() const;
    void setTextError(const QString& text);
    bool valid() const; ///< False exactly when the value is Null and Null is not allowed.
    void setMenuVisible(bool visible);
    QString TextMask() const;
    void setTextMask(const QString& mask);
    QString NomModule() const;
    void setNomModule(const QString& module);
    QString NomBase() const;
    QString SubMenu() const;
    void setSubMenu(const QString& text);
    bool Changed() const;
    qint32 IDIndividu() const;
    void setIDIndividu(qint32 id);
    qint32 IDItem() const;
    void setIDItem(qint32 id); ///< Loads the value of that record.
    addin::ChpEditionPtr ChpEdition() const { return m_field; }
    void setChpEdition(const addin::ChpEditionPtr& field);
    bool AllowNull() const;
    void setAllowNull(bool allowed);
    QString TextHelp() const;
    void setTextHelp(const QString& text);
    QString Caption() const;
    void setCaption(const QString& text);
    /// The items chosen in a list field; the identifiers of a link field.
    QStringList SelectedItems() const;
    void Refresh(); ///< Loads the value of its record again; no longer changed.
    bool IsNombre() const;
    bool IsUserText() const;
    bool IsUserListe() const;
    int HeightMin() const; ///< In pixels, from the context's row height.
    int MenuFlags() const;
    void setMenuFlags(int flags);
    QString IconName() const;
    QVariant value() const;
    void setValue(const QVariant& value); ///< Normalised, unless the field is locked.
    QString TextValue() const;
    QString FormatedValue();
    QStringList formats() const; ///< Display formats of the type, as listed (blanks included).
    int Format() const;
    void setFormat(int index);

    QString Operateur() const; ///< "=" reads "IS" and "<>" reads "IS NOT" on a Null value.
    void setOperateur(const QString& text);
    QString TextOperateur() const;
    void setTextOperateur(const QString& label);
    /// Row 0 the French labels, row 1 the operators.
    const QList<QStringList>& TabOperateur() const { return m_operators; }

    /// First item that the pattern matches; empty when none does. "*" stands for any text, every other
    /// character for itself without case.
    QString SearchListeItem(const QString& pattern) const;
    bool SearchListeCheck(const QString& item) const; ///< The value holds that item.
    QStringList ListeItems() const;
    void setListeItems(const QStringList& items);
    /// The form of the record that a link field designates (0 for a new one), with its caption. A field that is no
    /// link designates a record of its own module.
    std::unique_ptr<Cl_Editions> GetTabEdition(qint32 id, QString* caption);

    QString Control() const { return m_control; } ///< Name of the control; empty before CreateCtrl.
    bool CreateCtrl(ControlContainer& container);
    QString controlClass() const;
    /// A control reports an action by name ("Click", "ADD_ITEM" …); true when it was cancelled.
    bool report(const QString& action, const QVariantList& arguments = {});

    /// Told of the relayed actions and of item actions; sets `cancel` to stop them.
    std::function<void(Cl_Edition&, EditAction, bool& cancel)> onAction;
    std::function<void(Cl_Edition&, const QString& action, const QVariantList&, bool& cancel)> onItemAction;
    /// Passes an item action to the add-in of the module (found by NomModule).
    std::function<void(const QString& module, const QString& action, const QVariantList&, bool& cancel)> toAddin;

private:
    void normalizeValue();
    void normalizeCoordinate();
    void buildOperatorTable();
    void relayItemAction(const QString& name, const QVariantList& arguments, bool& cancel);
    QString formatted(const DisplayFormat& format) const;
    QString nameOf(QString (ReferenceNames::*name)(qint32) const) const;
    QString linkText() const;
    QString linkedModule() const; ///< What "ID Déterminations" leads to; for other fields their module.

    EditingContext m_context;
    qint32 m_id;
    addin::ChpEditionPtr m_field;
    QString m_operator = QStringLiteral("=");
    QList<QStringList> m_operators;
    QString m_control;
};

} // namespace editing
