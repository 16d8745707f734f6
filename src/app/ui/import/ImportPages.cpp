#include "app/ui/import/ImportPages.h"

#include "jet/Error.h"
#include "platform/ui/Keyboard.h"

#include <QFileInfo>
#include <QGridLayout>
#include <QHeaderView>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

namespace app {

using namespace Qt::StringLiterals;

namespace {

constexpr int previewRows = 20;
constexpr int kindRole = Qt::UserRole + 1;

QTableWidget* makeTable(const QString& name, const QString& accessible, QWidget* owner)
{
    auto* table = new QTableWidget(owner);
    table->setObjectName(name);
    table->setAccessibleName(accessible);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setAlternatingRowColors(true);
    table->setWordWrap(false);
    table->setTabKeyNavigation(false);
    table->verticalHeader()->hide();
    return table;
}

QLabel* note(const QString& text, QWidget* owner)
{
    auto* label = new QLabel(text, owner);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

void select(QComboBox* box, const QVariant& value)
{
    const QSignalBlocker quiet(box);
    box->setCurrentIndex(qMax(0, box->findData(value)));
}

} // namespace

// --- File ------------------------------------------------------------------------------------------

ImportFilePage::ImportFilePage(QList<ImportTarget> targets, platform::Dialogues& dialogues, QWidget* parent)
    : QWidget(parent), m_targets(std::move(targets)), m_dialogues(dialogues), m_path(new QLineEdit(this)),
      m_update(new QCheckBox(u"&Modifier les enregistrements dont l'identifiant est donné"_s, this)),
      m_erases(new QCheckBox(u"Une cellule &vide y vide le champ"_s, this)),
      m_preview(makeTable(u"importApercu"_s, u"Premières lignes du fichier"_s, this)), m_note(note({}, this))
{
    auto* grid = new QGridLayout(this);
    auto* fileLabel = new QLabel(u"&Fichier :"_s, this);
    fileLabel->setBuddy(m_path);
    m_path->setObjectName(u"importFichier"_s);
    m_path->setReadOnly(true);
    m_path->setPlaceholderText(u"Un tableau enregistré au format CSV"_s);
    auto* browse = new QPushButton(u"&Parcourir…"_s, this);
    browse->setObjectName(u"importParcourir"_s);
    browse->setAutoDefault(false);
    connect(browse, &QPushButton::clicked, this, &ImportFilePage::choose);
    grid->addWidget(fileLabel, 0, 0);
    grid->addWidget(m_path, 0, 1, 1, 4);
    grid->addWidget(browse, 0, 5);

    m_target = addChoice(u"importCible"_s, u"Importer &dans :"_s, *grid, 0);
    m_separator = addChoice(u"importSeparateur"_s, u"&Séparateur :"_s, *grid, 2);
    m_encoding = addChoice(u"importEncodage"_s, u"&Encodage :"_s, *grid, 4);
    m_decimal = addChoice(u"importDecimale"_s, u"Marque dé&cimale :"_s, *grid, 6);
    for (const ImportTarget& target : std::as_const(m_targets))
        m_target->addItem(target.isList ? target.label + u" (liste)"_s : target.label, target.name);
    for (const QChar separator : {u';', u',', u'\t'})
        m_separator->addItem(separatorName(separator), separator);
    for (const auto encoding : {CsvFormat::Utf8, CsvFormat::Windows1252, CsvFormat::Utf16LE, CsvFormat::Utf16BE})
        m_encoding->addItem(encodingName(encoding), int(encoding));
    m_decimal->addItem(u"virgule"_s, QChar(u','));
    m_decimal->addItem(u"point"_s, QChar(u'.'));

    m_update->setObjectName(u"importModifier"_s);
    m_erases->setObjectName(u"importVider"_s);
    m_erases->setEnabled(false);
    m_erases->setToolTip(u"Sinon une cellule vide laisse la valeur en place. Une colonne absente ne vide jamais un champ."_s);
    connect(m_update, &QCheckBox::toggled, m_erases, &QCheckBox::setEnabled);
    connect(m_update, &QCheckBox::toggled, this, &ImportFilePage::changed);
    grid->addWidget(m_update, 3, 0, 1, 4);
    grid->addWidget(m_erases, 3, 4, 1, 4);
    grid->addWidget(m_note, 4, 0, 1, 8);
    grid->addWidget(m_preview, 5, 0, 1, 8);
    grid->setRowStretch(5, 1);
    grid->setColumnStretch(1, 1);
    platform::forwardFocus(*this, *browse);
    showRows();
}

QComboBox* ImportFilePage::addChoice(const QString& name, const QString& label, QGridLayout& grid, int column)
{
    auto* box = new QComboBox(this);
    box->setObjectName(name);
    auto* text = new QLabel(label, this);
    text->setBuddy(box);
    grid.addWidget(text, 1 + column / 4, column % 4);
    grid.addWidget(box, 1 + column / 4, column % 4 + 1);
    connect(box, &QComboBox::currentIndexChanged, this, [this, box] {
        if (box != m_target)
            showRows();
        Q_EMIT changed();
    });
    return box;
}

ImportTarget ImportFilePage::target() const
{
    return m_targets.value(m_target->currentIndex());
}

void ImportFilePage::setTarget(const QString& name)
{
    if (const int index = m_target->findData(name); index >= 0)
        m_target->setCurrentIndex(index);
}

CsvFormat ImportFilePage::format() const
{
    return {m_separator->currentData().toChar(), CsvFormat::Encoding(m_encoding->currentData().toInt()), m_decimal->currentData().toChar()};
}

void ImportFilePage::choose()
{
    const QString path = m_dialogues.openFile(u"Importer un tableau"_s, u"Tableaux (*.csv *.txt *.tsv)|*.csv;*.txt;*.tsv|Tous les fichiers (*)|*|"_s);
    if (!path.isEmpty())
        setFile(path);
}

void ImportFilePage::setFile(const QString& path)
{
    m_path->setText(path);
    try {
        const CsvFormat format = detectCsvFormat(path);
        select(m_separator, format.separator);
        select(m_encoding, int(format.encoding));
        select(m_decimal, format.decimal);
    } catch (const jet::Error& error) {
        m_note->setText(error.description());
    }
    showRows();
    Q_EMIT changed();
}

void ImportFilePage::showRows()
{
    m_rows.clear();
    m_preview->clear();
    m_preview->setRowCount(0);
    m_preview->setColumnCount(0);
    if (m_path->text().isEmpty())
        return m_note->setText(u"Choisissez un fichier. Sa première ligne porte les titres des colonnes ; séparateur, encodage et marque "
                               "décimale sont reconnus."_s);
    try {
        CsvReader reader(m_path->text(), format());
        if (!reader.header().isEmpty())
            m_rows << reader.header();
        while (m_rows.size() <= previewRows && !m_rows.isEmpty() && reader.next())
            m_rows << reader.cells();
    } catch (const jet::Error& error) {
        return m_note->setText(error.description());
    }
    if (m_rows.isEmpty())
        return m_note->setText(u"Ce fichier est vide."_s);
    m_note->setText(u"Vérifiez que les colonnes et les accents sont justes ; sinon changez le séparateur ou l'encodage."_s);
    m_preview->setColumnCount(int(m_rows.first().size()));
    m_preview->setHorizontalHeaderLabels(m_rows.first());
    m_preview->setRowCount(int(m_rows.size()) - 1);
    for (int row = 1; row < int(m_rows.size()); ++row) {
        for (int column = 0; column < qMin(m_preview->columnCount(), int(m_rows[row].size())); ++column)
            m_preview->setItem(row - 1, column, new QTableWidgetItem(m_rows[row][column].simplified()));
    }
    m_preview->resizeColumnsToContents();
}

// --- Columns ---------------------------------------------------------------------------------------

ImportColumnsPage::ImportColumnsPage(QWidget* parent)
    : QWidget(parent), m_table(makeTable(u"importColonnes"_s, u"Colonnes du fichier et leurs champs"_s, this)), m_problem(note({}, this))
{
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(note(u"Pour chaque colonne du fichier, le champ qu'elle remplit. Ces choix sont gardés pour la prochaine fois."_s, this));
    layout->addWidget(m_table, 1);
    m_problem->setObjectName(u"importProbleme"_s);
    layout->addWidget(m_problem);
    m_table->setColumnCount(3);
    m_table->setHorizontalHeaderLabels({u"Colonne"_s, u"Exemple"_s, u"Champ"_s});
    m_table->horizontalHeader()->setStretchLastSection(true);
    setFocusProxy(m_table);
}

void ImportColumnsPage::present(const QList<QStringList>& rows, const ImportTarget& target, const ColumnMapping& mapping)
{
    m_fields.clear();
    m_table->setRowCount(0);
    m_table->setRowCount(int(mapping.size()));
    for (int column = 0; column < int(mapping.size()); ++column) {
        const QString title = rows.value(0).value(column);
        QString example;
        for (qsizetype row = 1; row < rows.size() && example.isEmpty(); ++row)
            example = rows[row].value(column).simplified();
        m_table->setItem(column, 0, new QTableWidgetItem(title));
        m_table->setItem(column, 1, new QTableWidgetItem(example));
        auto* box = new QComboBox(m_table);
        box->setObjectName(u"importChamp%1"_s.arg(column));
        box->setAccessibleName(u"Champ de la colonne %1"_s.arg(title));
        box->addItem(u"(ne pas importer)"_s, QString());
        for (const ImportField& field : target.fields)
            box->addItem(field.required ? field.caption + u" *"_s : field.caption, field.key);
        select(box, mapping[column]);
        connect(box, &QComboBox::currentIndexChanged, this, [this, box] { keepOnce(box); });
        m_table->setCellWidget(column, 2, box);
        setTabOrder(m_fields.isEmpty() ? static_cast<QWidget*>(m_table) : m_fields.last(), box);
        m_fields << box;
    }
    m_table->resizeColumnsToContents();
    m_table->setColumnWidth(1, qMin(m_table->columnWidth(1), 260));
}

/// A field is filled by one column: another one gives it up.
void ImportColumnsPage::keepOnce(QComboBox* chosen)
{
    for (QComboBox* box : std::as_const(m_fields)) {
        if (box != chosen && !chosen->currentData().toString().isEmpty() && box->currentData() == chosen->currentData())
            select(box, QString());
    }
    Q_EMIT changed();
}

ColumnMapping ImportColumnsPage::mapping() const
{
    ColumnMapping mapping;
    for (const QComboBox* box : m_fields)
        mapping << box->currentData().toString();
    return mapping;
}

// --- Names -----------------------------------------------------------------------------------------

ImportNamesPage::ImportNamesPage(QWidget* parent)
    : QWidget(parent), m_table(makeTable(u"importNoms"_s, u"Noms inconnus"_s, this)), m_note(note({}, this))
{
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_note);
    layout->addWidget(m_table, 1);
    auto* row = new QHBoxLayout;
    const QList<std::pair<QString, int>> all{{u"Tout &créer"_s, NameDecision::Create}, {u"Tout re&fuser"_s, NameDecision::Refuse},
                                             {u"Tout laisser &vide"_s, NameDecision::Leave}};
    for (const auto& [text, kind] : all) {
        auto* button = new QPushButton(text, this);
        button->setAutoDefault(false);
        button->setObjectName(u"importTout%1"_s.arg(kind));
        connect(button, &QPushButton::clicked, this, [this, kind = kind] { decideAll(kind); });
        m_all << button;
        row->addWidget(button);
    }
    row->addStretch(1);
    layout->addLayout(row);
    m_table->setColumnCount(4);
    m_table->setHorizontalHeaderLabels({u"Liste"_s, u"Nom dans le fichier"_s, u"Lignes"_s, u"Que faire"_s});
    m_table->horizontalHeader()->setStretchLastSection(true);
    setFocusProxy(m_table);
}

void ImportNamesPage::present(const QList<UnknownName>& names)
{
    m_names = names;
    m_decisions.clear();
    for (QPushButton* button : std::as_const(m_all))
        button->setEnabled(!names.isEmpty());
    m_table->setRowCount(0);
    m_table->setRowCount(int(names.size()));
    m_note->setText(names.isEmpty() ? u"Tous les noms du fichier sont dans les listes du projet."_s
                                    : u"Ces noms ne sont pas dans les listes du projet, ou y désignent plusieurs lignes. Ceux qui "
                                      "ressemblent à un autre attendent votre choix ; les autres seront créés. L'essai n'écrit rien."_s);
    for (int i = 0; i < int(names.size()); ++i) {
        const UnknownName& name = names[i];
        m_table->setItem(i, 0, new QTableWidgetItem(listOfType(name.type)));
        m_table->setItem(i, 1, new QTableWidgetItem(name.name));
        auto* rows = new QTableWidgetItem(QLocale().toString(name.rows));
        rows->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        rows->setToolTip(u"La première est la ligne %1"_s.arg(name.line));
        m_table->setItem(i, 2, rows);
        auto* box = new QComboBox(m_table);
        box->setObjectName(u"importDecision%1"_s.arg(i));
        box->setAccessibleName(u"Que faire de %1"_s.arg(name.name));
        box->addItem(u"Refuser ces lignes"_s, 0);
        box->setItemData(0, NameDecision::Refuse, kindRole);
        box->addItem(u"Créer ce nom"_s, 0);
        box->setItemData(1, NameDecision::Create, kindRole);
        box->addItem(u"Laisser le champ vide"_s, 0);
        box->setItemData(2, NameDecision::Leave, kindRole);
        for (const editing::ReferenceMatch& match : name.near) {
            box->addItem(u"C'est : "_s + (match.name + u' ' + match.detail).trimmed(), match.id);
            box->setItemData(box->count() - 1, NameDecision::Choose, kindRole);
        }
        if (!mayBeMeant(name))
            box->setCurrentIndex(1);
        m_table->setCellWidget(i, 3, box);
        setTabOrder(m_decisions.isEmpty() ? static_cast<QWidget*>(m_table) : m_decisions.last(), box);
        m_decisions << box;
    }
    m_table->resizeColumnsToContents();
}

void ImportNamesPage::decideAll(int kind)
{
    for (QComboBox* box : std::as_const(m_decisions))
        box->setCurrentIndex(qMax(0, box->findData(kind, kindRole)));
}

NameDecisions ImportNamesPage::decisions() const
{
    NameDecisions decisions;
    for (qsizetype i = 0; i < m_names.size(); ++i) {
        const QComboBox* box = m_decisions[i];
        decisions.insert(nameKey(m_names[i].type, m_names[i].name),
                         {NameDecision::Kind(box->currentData(kindRole).toInt()), box->currentData().toInt()});
    }
    return decisions;
}

} // namespace app
