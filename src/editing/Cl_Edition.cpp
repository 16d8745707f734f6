#include "editing/Cl_Edition.h"

#include "data/FieldType.h"
#include "editing/Cl_Editions.h"
#include "editing/FieldTypes.h"
#include "editing/SameText.h"
#include "editing/Trapped.h"
#include "jet/text/Like.h"

#include <QHash>

namespace editing {

Q_LOGGING_CATEGORY(editingLog, "herbora.editing")

using namespace Qt::StringLiterals;

namespace {

constexpr int menuBits = 4 | 8 | 16;
const QString lockedRecord = u"L'enregistrement est verrouillé"_s;

QStringList itemsOf(const QString& text, QChar separator)
{
    QStringList items;
    for (const QString& item : text.split(separator, Qt::SkipEmptyParts)) {
        if (!item.trimmed().isEmpty())
            items << item.trimmed();
    }
    return items;
}

} // namespace

Cl_Edition::Cl_Edition(const EditingContext& context)
    : m_context(context), m_id(context.nextId()), m_field(std::make_shared<addin::ChpEdition>())
{
    buildOperatorTable();
}

Cl_Edition::~Cl_Edition() = default;

QString Cl_Edition::key() const
{
    return QString::number(m_id) + u"-key"_s;
}

int Cl_Edition::ctype() const
{
    return m_field->ctype;
}

void Cl_Edition::setCtype(int type)
{
    m_field->ctype = type;
    buildOperatorTable();
}

QString Cl_Edition::champ() const { return m_field->champ; }
void Cl_Edition::setChamp(const QString& column) { m_field->champ = column; }
bool Cl_Edition::Locked() const { return m_field->Locked; }
void Cl_Edition::setLocked(bool locked) { m_field->Locked = locked; }
void Cl_Edition::setTextError(const QString& text) { m_field->TextError = text; }
QString Cl_Edition::TextMask() const { return m_field->TextMask; }
void Cl_Edition::setTextMask(const QString& mask) { m_field->TextMask = mask; }
QString Cl_Edition::NomModule() const { return m_field->NomModule; }
void Cl_Edition::setNomModule(const QString& module) { m_field->NomModule = module; }
QString Cl_Edition::NomBase() const { return m_field->NomBase; }
QString Cl_Edition::SubMenu() const { return m_field->SubMenu; }
void Cl_Edition::setSubMenu(const QString& text) { m_field->SubMenu = text; }
bool Cl_Edition::Changed() const { return m_field->Changed; }
qint32 Cl_Edition::IDIndividu() const { return m_field->IDIndividu; }
void Cl_Edition::setIDIndividu(qint32 id) { m_field->IDIndividu = id; }
qint32 Cl_Edition::IDItem() const { return m_field->IDItem; }
bool Cl_Edition::AllowNull() const { return m_field->AllowNull; }
void Cl_Edition::setAllowNull(bool allowed) { m_field->AllowNull = allowed; }
QString Cl_Edition::TextHelp() const { return m_field->TextHelp; }
void Cl_Edition::setTextHelp(const QString& text) { m_field->TextHelp = text; }
QString Cl_Edition::Caption() const { return m_field->Caption; }
void Cl_Edition::setCaption(const QString& text) { m_field->Caption = text; }
int Cl_Edition::MenuFlags() const { return m_field->MenuFlags; }
void Cl_Edition::setMenuFlags(int flags) { m_field->MenuFlags = flags; }
QVariant Cl_Edition::value() const { return m_field->value; }
int Cl_Edition::Format() const { return m_field->Format; }
void Cl_Edition::setFormat(int index) { m_field->Format = index; }

QString Cl_Edition::TextError() const
{
    const QString own = m_field->TextError.trimmed();
    if (!own.isEmpty())
        return own;
    return valid() ? QString() : u"Valeur nulle non autorisée pour ce champ"_s;
}

bool Cl_Edition::valid() const
{
    return m_field->value.isValid() || m_field->AllowNull;
}

void Cl_Edition::setMenuVisible(bool visible)
{
    const bool all = (m_field->MenuFlags & menuBits) == menuBits;
    if (visible != all)
        m_field->MenuFlags ^= menuBits;
}

void Cl_Edition::setIDItem(qint32 id)
{
    m_field->IDItem = id;
    Refresh();
}

void Cl_Edition::setChpEdition(const addin::ChpEditionPtr& field)
{
    if (!field)
        return;
    m_field = field;
    buildOperatorTable();
}

void Cl_Edition::Refresh()
{
    if (!m_context.records || m_field->IDItem <= 0)
        return;
    trapped("record", [this] {
        const QVariant loaded =
            m_context.records->record(m_field->NomModule, m_field->IDItem).value(m_field->champ);
        // The store gives yes/no columns as booleans; a form holds them as texts.
        m_field->value = loaded.typeId() == QMetaType::Bool ? (loaded.toBool() ? u"True"_s : u"False"_s) : loaded;
        m_field->Changed = false;
    });
}

bool Cl_Edition::IsNombre() const { return fieldTypeRow(ctype()).isNumber; }
bool Cl_Edition::IsUserText() const { return fieldTypeRow(ctype()).isUserText; }
bool Cl_Edition::IsUserListe() const { return fieldTypeRow(ctype()).isUserList; }

int Cl_Edition::HeightMin() const
{
    return m_context.rowHeight * fieldTypeRow(ctype()).rows;
}

QString Cl_Edition::IconName() const
{
    const QString& icon = fieldTypeRow(ctype()).icon;
    return icon.isEmpty() ? NomModule() : icon;
}

QString Cl_Edition::controlClass() const
{
    return fieldTypeRow(ctype()).control;
}

QStringList Cl_Edition::formats() const
{
    return fieldTypeRow(ctype()).formatNames;
}

void Cl_Edition::buildOperatorTable()
{
    m_operators = fieldTypeRow(ctype()).operators;
}

QString Cl_Edition::Operateur() const
{
    if (!m_field->value.isValid()) {
        if (m_operator == u"=")
            return u"IS"_s;
        if (m_operator == u"<>")
            return u"IS NOT"_s;
    }
    return m_operator;
}

void Cl_Edition::setOperateur(const QString& text)
{
    static const QStringList known{u"="_s, u"<>"_s, u"<"_s, u">"_s, u"LIKE"_s, u"NOT LIKE"_s,
                                   u"IS"_s, u"IS NOT"_s, u"IN"_s, u"NOT IN"_s};
    QString given = text;
    if (ctype() == data::TexteMémo)
        given.replace(u"="_s, u"LIKE"_s).replace(u"<>"_s, u"NOT LIKE"_s);
    else if (ctype() == data::LienCourant)
        given.replace(u"="_s, u"IN"_s).replace(u"<>"_s, u"NOT IN"_s);
    given = given.trimmed().toUpper();
    m_operator = known.contains(given) ? given : u"="_s;
}

QString Cl_Edition::TextOperateur() const
{
    const qsizetype at = m_operators[1].indexOf(m_operator);
    return at < 0 ? QString() : m_operators[0][at];
}

void Cl_Edition::setTextOperateur(const QString& label)
{
    const qsizetype at = m_operators[0].indexOf(label);
    if (at >= 0)
        m_operator = m_operators[1][at];
}

QStringList Cl_Edition::SelectedItems() const
{
    const QString text = m_field->value.toString();
    return itemsOf(text, ctype() == data::LienCourant ? u',' : u';');
}

QStringList Cl_Edition::ListeItems() const
{
    if (!m_field->Descripteurs.isEmpty() || !m_context.records)
        return m_field->Descripteurs;
    return trapped("descriptors", QStringList(), [this] { return m_context.records->descriptors(NomModule(), champ()); });
}

void Cl_Edition::setListeItems(const QStringList& items)
{
    m_field->Descripteurs = items;
    if (m_context.records)
        trapped("descriptors", [&] { m_context.records->setDescriptors(NomModule(), champ(), items); });
}

QString Cl_Edition::SearchListeItem(const QString& pattern) const
{
    const QStringList items = ListeItems();
    if (items.contains(pattern)) // as the cells of a grid hold it
        return pattern;
    // Of the wildcards of LIKE, only "*" is one here.
    QString literal;
    for (const QChar c : pattern)
        literal += QStringView(u"?#[").contains(c) ? u'[' + QString(c) + u']' : QString(c);
    const jet::text::LikePattern like(literal);
    return trapped("pattern", QString(), [&] {
        const auto item = std::find_if(items.begin(), items.end(), [&](const QString& i) { return like.matches(i); });
        return item == items.end() ? QString() : *item;
    });
}

bool Cl_Edition::SearchListeCheck(const QString& item) const
{
    const QStringList chosen = SelectedItems();
    return std::any_of(chosen.begin(), chosen.end(),
                       [&](const QString& other) { return sameText(other, item.trimmed()); });
}

QString Cl_Edition::linkedModule() const
{
    const QString prefix = u"ID "_s;
    return ctype() == data::LienCourant && champ().startsWith(prefix) ? champ().mid(prefix.size()) : NomModule();
}

std::unique_ptr<Cl_Editions> Cl_Edition::GetTabEdition(qint32 id, QString* caption)
{
    auto form = std::make_unique<Cl_Editions>(m_context);
    if (!m_context.records)
        return form;
    trapped("sub-record", [&] {
        RecordSource& records = *m_context.records;
        const QString module = linkedModule();
        form->setTabedition(module, records.fields(module));
        const QString label = u"< "_s + records.label(module);
        if (caption)
            *caption = id > 0 ? label + u" - N° "_s + QString::number(id) + u" >"_s : label + u" - Ajout >"_s;
        form->bind(IDIndividu(), id);
        if (id > 0 && records.record(module, id).value(u"Locked"_s).toBool()) {
            for (const auto& field : *form)
                field->setTextError(lockedRecord);
        }
    });
    return form;
}

bool Cl_Edition::CreateCtrl(ControlContainer& container)
{
    const bool created = trapped("control", [&] {
        int counter = container.controlCount();
        while (container.hasControl(QString::number(counter) + u"Ctrl"_s))
            ++counter;
        m_control = QString::number(counter) + u"Ctrl"_s;
        container.addControl(controlClass(), m_control, *this);
    });
    if (!created)
        m_control.clear();
    return created;
}

bool Cl_Edition::report(const QString& action, const QVariantList& arguments)
{
    static const QHash<QString, EditAction> relayed{{u"CLICK"_s, EditAction::Click},
                                                    {u"REFRESH"_s, EditAction::Refresh},
                                                    {u"EDIT"_s, EditAction::Edit},
                                                    {u"CHANGE"_s, EditAction::Change}};
    static const QStringList itemActions{u"ADD_ITEM"_s, u"DELETE_ITEM"_s, u"EDIT_ITEM"_s};
    const QString name = action.toUpper();
    bool cancel = false;
    trapped("action", [&] {
        if (const auto known = relayed.find(name); known != relayed.end()) {
            if (onAction)
                onAction(*this, *known, cancel);
        } else if (IsUserListe() && itemActions.contains(name)) {
            relayItemAction(name, arguments, cancel);
        }
    });
    return cancel;
}

/// First to the owner; unless it cancels, to the add-in of the module.
void Cl_Edition::relayItemAction(const QString& name, const QVariantList& arguments, bool& cancel)
{
    if (onItemAction)
        onItemAction(*this, name, arguments, cancel);
    if (cancel || !toAddin)
        return;
    QVariantList two = arguments.first(std::min<qsizetype>(2, arguments.size()));
    two.resize(2);
    toAddin(NomModule(), name, two, cancel);
}

} // namespace editing
