#include "app/ui/structure/PropertySheet.h"

#include "app/structure/StructureEditing.h"

#include <QEvent>
#include <QTimer>
#include <QVBoxLayout>

namespace app {

using namespace Qt::StringLiterals;

namespace {

/// The text, unless the user is typing there.
void setText(QLineEdit* line, const QString& text)
{
    if (line->text() == text || (line->hasFocus() && line->isModified()))
        return;
    line->setText(text);
    line->setCursorPosition(0); // a long text is read from its beginning
}

void setChecked(QCheckBox* box, bool on)
{
    const QSignalBlocker quiet(box);
    box->setChecked(on);
}

} // namespace

PropertySheet::PropertySheet(StructureEditing& editing, QWidget* parent)
    : QWidget(parent), m_editing(editing), m_title(new QLabel(this)), m_form(new QFormLayout),
      m_help(new QLabel(this))
{
    auto* layout = new QVBoxLayout(this);
    QFont bold = m_title->font();
    bold.setBold(true);
    m_title->setFont(bold);
    m_title->setObjectName(u"titre"_s);
    m_title->setTextFormat(Qt::PlainText);
    m_title->setWordWrap(true);
    m_help->setObjectName(u"aide"_s);
    m_help->setTextFormat(Qt::PlainText);
    m_help->setWordWrap(true);
    m_help->setForegroundRole(QPalette::PlaceholderText);
    m_help->setMinimumHeight(3 * m_help->fontMetrics().lineSpacing());
    m_help->setAlignment(Qt::AlignTop);
    m_form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    m_form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    layout->addWidget(m_title);
    layout->addSpacing(6);
    layout->addLayout(m_form);
    layout->addStretch(1);
    layout->addWidget(m_help);
}

void PropertySheet::setTitle(const QString& title)
{
    m_title->setText(title);
    m_help->clear();
}

void PropertySheet::later(const std::function<void()>& work)
{
    // A question takes the focus away, which would ask a second time.
    if (m_taking)
        return;
    m_taking = true;
    QTimer::singleShot(0, this, [this, work] {
        work();
        m_taking = false;
        showItem(m_id);
    });
}

void PropertySheet::addRow(const QString& name, const QString& label, const QString& help, QWidget* editor)
{
    editor->setObjectName(name);
    editor->setAccessibleName(label);
    editor->setAccessibleDescription(help);
    editor->setToolTip(help);
    editor->setProperty("aide", help);
    editor->installEventFilter(this);
    auto* caption = new QLabel(label, this);
    caption->setBuddy(editor);
    caption->setToolTip(help);
    const QLayoutItem* last = m_form->rowCount() > 0 ? m_form->itemAt(m_form->rowCount() - 1, QFormLayout::FieldRole) : nullptr;
    m_form->addRow(caption, editor);
    if (last && last->widget())
        setTabOrder(last->widget(), editor);
}

QLineEdit* PropertySheet::addLine(const QString& name, const QString& label, const QString& help,
                                  const std::function<void(int, const QString&)>& taken)
{
    auto* line = new QLineEdit(this);
    addRow(name, label, help, line);
    connect(line, &QLineEdit::editingFinished, this, [this, line, taken] {
        if (!line->isModified() || m_id == 0)
            return;
        line->setModified(false);
        const QString text = line->text();
        later([taken, id = m_id, text] { taken(id, text); });
    });
    return line;
}

QCheckBox* PropertySheet::addCheck(const QString& name, const QString& label, const QString& help,
                                   const std::function<void(int, bool)>& taken)
{
    auto* box = new QCheckBox(this);
    addRow(name, label, help, box);
    connect(box, &QCheckBox::toggled, this, [this, taken](bool on) {
        if (m_id != 0)
            later([taken, id = m_id, on] { taken(id, on); });
    });
    return box;
}

void PropertySheet::setRowVisible(QWidget* editor, bool visible)
{
    editor->setVisible(visible);
    if (QWidget* label = m_form->labelForField(editor))
        label->setVisible(visible);
}

bool PropertySheet::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::FocusIn)
        m_help->setText(watched->property("aide").toString());
    return QWidget::eventFilter(watched, event);
}

// --- A module --------------------------------------------------------------------------------------

ModuleSheet::ModuleSheet(StructureEditing& structure, QWidget* parent) : PropertySheet(structure, parent)
{
    setObjectName(u"feuilleModule"_s);
    setAccessibleName(u"Propriétés du module"_s);
    m_name = addLine(u"NomModule"_s, u"Nom du module"_s, u"Indiquer le nom du Module"_s,
                     [this](int id, const QString& text) { editing().renameModule(id, text); });
    m_label = addLine(u"NomObjet"_s, u"Appellation élémentaire"_s,
                      u"Indiquer le nom usuel pour spécifier un seul enregistrement"_s,
                      [this](int id, const QString& text) { editing().setLabel(id, text); });
    m_short = addLine(u"ChampsLabel"_s, u"Appellation abrégée"_s,
                      u"Combinaison de champs et de textes pour l'affichage abrégé d'un enregistrement"_s,
                      [this](int id, const QString& text) { editing().setShortLabel(id, text); });
    m_short->setPlaceholderText(u"[Nom d'un champ] et texte"_s);
    m_short->setMaxLength(255);
    m_example = new QLabel(this);
    m_example->setTextFormat(Qt::PlainText);
    m_example->setWordWrap(true);
    addRow(u"exempleAbrege"_s, u"Exemple abrégé"_s, {}, m_example);
    m_unique = addCheck(u"IndividuUnique"_s, u"Un enregistrement par Individu"_s, {},
                        [this](int id, bool on) { editing().setModuleFlag(id, data::Unique, on); });
    m_mixed = addCheck(u"IndividuMixteUnique"_s, u"Une combinaison par Individu"_s, {},
                       [this](int id, bool on) { editing().setModuleFlag(id, data::MixteUnique, on); });
    m_description = addLine(u"aideModule"_s, u"Description"_s, u"Indiquer ce que contient le Module"_s,
                            [this](int id, const QString& text) { editing().setModuleHelp(id, text); });
    showItem(0);
}

void ModuleSheet::showItem(int id)
{
    const DraftModule* module = editing().draft().module(id);
    const bool other = m_id != id;
    m_id = 0; // what is set now was not typed
    setEnabled(module);
    if (other || !module)
        setTitle(module ? QString() : u"Aucun module sélectionné"_s);
    if (!module)
        return;
    setTitle(u"Propriétés du Module <"_s + module->record.name + u'>');
    const bool readOnly = editing().isReadOnly(*module);
    if (other) {
        for (QLineEdit* line : {m_name, m_label, m_short, m_description})
            line->setModified(false);
    }
    setText(m_name, module->record.name);
    setText(m_label, module->record.label);
    setText(m_short, module->record.shortLabel);
    setText(m_description, module->record.help);
    setChecked(m_unique, module->record.flags & data::Unique);
    setChecked(m_mixed, module->record.flags & data::MixteUnique);
    const QString example = editing().example(*module);
    m_example->setText(example.isEmpty() ? u"—"_s : example);
    for (QLineEdit* line : {m_name, m_label, m_description})
        line->setReadOnly(readOnly);
    m_unique->setEnabled(!readOnly);
    m_mixed->setEnabled(!readOnly);
    setRowVisible(m_unique, !module->record.isIndividus());
    setRowVisible(m_mixed, !module->record.isIndividus());
    m_id = id;
}

// --- A field ---------------------------------------------------------------------------------------

FieldSheet::FieldSheet(StructureEditing& structure, QWidget* parent)
    : PropertySheet(structure, parent), m_type(new QComboBox(this)), m_descriptors(new QPushButton(this))
{
    setObjectName(u"feuilleChamp"_s);
    setAccessibleName(u"Propriétés du champ"_s);
    m_name = addLine(u"Caption"_s, u"Nom du champ"_s, u"Indiquer l'appellation usuelle du champ"_s,
                     [this](int id, const QString& text) { editing().renameField(id, text); });
    m_name->setMaxLength(50);
    for (const auto& [text, type] : StructureEditing::typesOffered())
        m_type->addItem(text, type);
    addRow(u"ctype"_s, u"Type du champ"_s, u"Sélectionner le Type du champ"_s, m_type);
    connect(m_type, &QComboBox::activated, this, [this](int at) {
        const int type = m_type->itemData(at).toInt();
        const int id = m_id;
        QTimer::singleShot(0, this, [this, id, type] {
            if (id != 0 && !editing().setType(id, type))
                showItem(m_id);
        });
    });
    const auto flag = [this](const QString& name, const QString& label, const QString& help, data::Flag bit) {
        return addCheck(name, label, help, [this, bit](int id, bool on) { editing().setFieldFlag(id, bit, on); });
    };
    m_required = flag(u"AllowNull"_s, u"Valeur nulle interdite"_s, u"La valeur nulle est elle interdite ?"_s, data::Obligatoire);
    m_unique = flag(u"ChampUnique"_s, u"Valeur unique"_s, u"La valeur du champ doit elle être Unique dans le Module ?"_s, data::Unique);
    m_mixed = flag(u"ChampMixteUnique"_s, u"Combinaison unique"_s,
                   u"La combinaison formée par tous les champs cochés dans la colonne doit elle être Unique ?"_s, data::MixteUnique);
    m_linked = flag(u"Interface"_s, u"Lien interface"_s,
                    u"Le champ doit il être lié au champ précédent dans l'assistant de saisie ? Tester l'Interface pour vérifier"_s,
                    data::Interface);
    m_description = addLine(u"Txthelp"_s, u"Description"_s,
                            u"Indiquer une description ou des explications concernant le contenu du champ"_s,
                            [this](int id, const QString& text) { editing().setFieldHelp(id, text); });
    m_description->setMaxLength(255);
    addRow(u"Descripteurs"_s, u"Liste des descripteurs"_s,
           u"Ajouter/modifier/supprimer les descripteurs prédéfinis pour le champ sélectionné"_s, m_descriptors);
    connect(m_descriptors, &QPushButton::clicked, this, [this] { Q_EMIT descriptorsWanted(m_id); });
    m_rule = addLine(u"ValidationRule"_s, u"Règle de validation"_s,
                     u"Indiquer une règle unique pour valider le champ (ex: >0 ou <>"_s,
                     [this](int id, const QString& text) { editing().setRule(id, text); });
    m_ruleText = addLine(u"ValidationTexte"_s, u"Message si validation échoue"_s,
                         u"Indiquer le message qui apparaîtra si la règle de validation n'est pas respectée"_s,
                         [this](int id, const QString& text) { editing().setRuleText(id, text); });
    showItem(0);
}

void FieldSheet::showItem(int id)
{
    const DraftModule* module = editing().draft().moduleOf(id);
    const DraftField* field = module ? module->field(id) : nullptr;
    const bool other = m_id != id;
    m_id = 0;
    setEnabled(field);
    if (!field) {
        setTitle(u"Aucun champ sélectionné"_s);
        return;
    }
    const data::FieldRecord& record = field->record;
    setTitle(u"Propriétés du Champ <"_s + record.caption + u'>');
    if (other) {
        for (QLineEdit* line : {m_name, m_description, m_rule, m_ruleText})
            line->setModified(false);
    }
    setText(m_name, record.caption);
    setText(m_description, record.help);
    setText(m_rule, record.rule);
    setText(m_ruleText, record.ruleText);
    m_type->setPlaceholderText(StructureEditing::typeText(record.type)); // of a type that is not offered any more
    m_type->setCurrentIndex(m_type->findData(record.type));
    setChecked(m_required, record.flags & data::Obligatoire);
    setChecked(m_unique, record.flags & data::Unique);
    setChecked(m_mixed, record.flags & data::MixteUnique);
    setChecked(m_linked, record.flags & data::Interface);
    m_descriptors->setText(StructureEditing::descriptorText(*field));
    setRowVisible(m_descriptors, field->isList());
    const bool readOnly = editing().isReadOnly(*module, *field);
    for (QLineEdit* line : {m_name, m_description, m_rule, m_ruleText})
        line->setReadOnly(readOnly);
    for (QWidget* editor : QList<QWidget*>{m_type, m_required, m_unique, m_mixed, m_linked})
        editor->setEnabled(!readOnly);
    m_id = id;
}

} // namespace app
