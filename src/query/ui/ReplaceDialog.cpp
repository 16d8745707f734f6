#include "query/ui/ReplaceDialog.h"

#include "data/Cancellable.h"
#include "data/FieldType.h"
#include "jet/Cancelled.h"
#include "query/ui/ExpressionDialog.h"

#include <QHeaderView>
#include <QLocale>
#include <QPointer>
#include <QPushButton>
#include <QSplitter>
#include <QToolButton>
#include <QVBoxLayout>

namespace query {

using namespace Qt::StringLiterals;

namespace {

constexpr int pauseMilliseconds = 250;
constexpr int previewRecords = 50;

QString countText(qint64 count, const QString& one, const QString& several)
{
    return QLocale().toString(count) + u' ' + (count < 2 ? one : several);
}

QTableWidgetItem* cell(const QString& text)
{
    auto* item = new QTableWidgetItem(text);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    return item;
}

} // namespace

ReplaceDialog::ReplaceDialog(const ReplaceSurroundings& surroundings, const data::ModuleRecord& module,
                             const QList<qint32>& records, QWidget* parent)
    : QDialog(parent), m_around(surroundings), m_module(module), m_records(records),
      m_structure(std::make_unique<Structure>(surroundings.world.database, surroundings.context)),
      m_model(new ReplaceModel(*m_structure, this)), m_fields(new CbModule(surroundings.icons)),
      m_selection(new QRadioButton), m_whole(new QRadioButton), m_grid(new QTableView), m_preview(new QTableWidget),
      m_counts(new QLabel)
{
    setObjectName(u"Form4"_s);
    m_structure->LoadStructure(m_around.modules);
    m_structure->setModeFullList(false);
    m_structure->setNomModule(module.name);
    m_fields->setStructure(m_structure.get());
    setWindowTitle(batch().title());
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(makeTop());
    auto* sides = new QSplitter;
    sides->setChildrenCollapsible(false);
    sides->addWidget(m_fields);
    sides->addWidget(makeGrid());
    sides->setSizes({240, 620});
    layout->addWidget(sides, 1);
    auto* buttons = new QDialogButtonBox;
    m_replace = buttons->addButton(u"&Remplacer"_s, QDialogButtonBox::ActionRole);
    m_replace->setObjectName(u"remplacer"_s);
    m_replace->setIcon(QIcon::fromTheme(u"edit-find-replace"_s));
    m_replace->setAutoDefault(false);
    buttons->addButton(QDialogButtonBox::Close); // Tab takes them in the order of their making
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    connectParts();
    resize(900, 620);
    showNothing(u"Choisissez dans l'arbre les champs à remplacer."_s);
}

ReplaceDialog::~ReplaceDialog()
{
    m_fields->setStructure(nullptr);
}

QWidget* ReplaceDialog::makeTop()
{
    auto* top = new QWidget;
    auto* layout = new QHBoxLayout(top);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* caption = new QLabel(m_records.isEmpty() ? m_module.label : batch().caption());
    caption->setObjectName(u"legende"_s);
    QFont font = caption->font();
    font.setBold(true);
    caption->setFont(font);
    layout->addWidget(caption);
    layout->addStretch(1);
    m_selection->setObjectName(u"dansSelection"_s);
    m_selection->setText(u"dans la sélection en cours du module ("_s + QLocale().toString(m_records.size()) + u')');
    m_whole->setObjectName(u"dansModule"_s);
    m_whole->setText(u"dans le module"_s);
    m_selection->setEnabled(!m_records.isEmpty());
    (m_records.isEmpty() ? m_whole : m_selection)->setChecked(true);
    layout->addWidget(m_selection);
    layout->addWidget(m_whole);
    return top;
}

QWidget* ReplaceDialog::makeGrid()
{
    auto* side = new QWidget;
    auto* layout = new QVBoxLayout(side);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* delegate = new ReplaceDelegate(this);
    delegate->setSearch([this](int type, const QString& typed) {
        if (m_around.runner.isRunning())
            return QList<editing::ReferenceMatch>();
        QList<editing::ReferenceMatch> found;
        if (type == data::Taxon && validName.contains(typed, Qt::CaseInsensitive))
            found << editing::ReferenceMatch{.id = 0, .name = validName, .detail = {}};
        try {
            found += editing::ReferenceSearch(m_around.world.database).matches(type, typed);
        } catch (const jet::Error& error) {
            fail(std::current_exception());
        }
        return found;
    });
    m_grid->setObjectName(u"remplacements"_s);
    m_grid->setAccessibleName(u"Nouvelles valeurs"_s);
    m_grid->setModel(m_model);
    m_grid->setItemDelegate(delegate);
    m_grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_grid->setSelectionMode(QAbstractItemView::SingleSelection);
    m_grid->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed
                            | QAbstractItemView::AnyKeyPressed);
    m_grid->setDragDropMode(QAbstractItemView::DropOnly);
    m_grid->setTabKeyNavigation(false);
    m_grid->verticalHeader()->hide();
    m_grid->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    m_grid->horizontalHeader()->resizeSection(0, fontMetrics().averageCharWidth() * 28);
    m_grid->horizontalHeader()->setStretchLastSection(true);
    m_grid->horizontalHeader()->setHighlightSections(false);
    auto* tools = new QHBoxLayout;
    auto* hint = new QLabel(u"« ~ » est la valeur actuelle : 10~+ l'augmente de 10, cf. &~ met « cf. » devant."_s);
    hint->setWordWrap(true);
    hint->setTextFormat(Qt::PlainText);
    tools->addWidget(hint, 1);
    auto* expression = new QPushButton(u"&Expression…"_s);
    expression->setObjectName(u"expression"_s);
    auto* remove = new QPushButton(QIcon::fromTheme(u"list-remove"_s), u"&Supprimer"_s);
    remove->setObjectName(u"supprimer"_s);
    for (QPushButton* button : {expression, remove}) {
        button->setAutoDefault(false);
        tools->addWidget(button);
    }
    connect(expression, &QPushButton::clicked, this, &ReplaceDialog::editExpression);
    connect(remove, &QPushButton::clicked, this, [this] { m_model->remove(m_grid->currentIndex().row()); });
    m_counts->setObjectName(u"nombres"_s);
    m_counts->setWordWrap(true);
    m_preview->setObjectName(u"apercu"_s);
    m_preview->setAccessibleName(u"Valeurs avant et après"_s);
    m_preview->verticalHeader()->hide();
    m_preview->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    m_preview->setAlternatingRowColors(true);
    m_preview->setTabKeyNavigation(false);
    m_preview->setWordWrap(false);
    layout->addWidget(m_grid, 2);
    layout->addLayout(tools);
    layout->addWidget(m_counts);
    layout->addWidget(m_preview, 3);
    return side;
}

void ReplaceDialog::connectParts()
{
    m_pause.setSingleShot(true);
    m_pause.setInterval(pauseMilliseconds);
    connect(&m_pause, &QTimer::timeout, this, &ReplaceDialog::count);
    connect(m_model, &ReplaceModel::changed, this, &ReplaceDialog::changed);
    connect(m_selection, &QRadioButton::toggled, this, &ReplaceDialog::changed);
    connect(m_fields, &CbModule::columnWanted, this, [this](const QString& path) {
        const int row = m_model->add(path);
        if (row < 0)
            return;
        m_grid->setFocus();
        m_grid->setCurrentIndex(m_model->index(row, ReplaceModel::Value));
        m_grid->edit(m_grid->currentIndex());
    });
    connect(m_replace, &QPushButton::clicked, this, &ReplaceDialog::replace);
}

BatchReplace ReplaceDialog::batch() const
{
    BatchReplace made(m_around.world.database, m_around.world.clock, m_around.world.dialogues, m_around.context, m_module,
                      m_selection->isChecked() && !m_records.isEmpty() ? std::optional(m_records) : std::nullopt);
    made.rows = m_model->rows();
    return made;
}

void ReplaceDialog::editExpression()
{
    const int row = m_grid->currentIndex().row();
    if (row < 0)
        return;
    auto* window = new ExpressionDialog(*m_structure, m_around.icons, m_model->caption(row),
                                        m_model->rows().at(row).value, this);
    window->setAttribute(Qt::WA_DeleteOnClose);
    connect(window, &QDialog::accepted, this,
            [this, row, window] { m_model->setValue(row, window->expression(), true); });
    window->open();
}

// --- Preview ---------------------------------------------------------------------------------

void ReplaceDialog::changed()
{
    ++m_generation;
    m_ready = false;
    m_replace->setEnabled(false);
    m_pause.start();
}

void ReplaceDialog::showNothing(const QString& text)
{
    m_ready = false;
    m_replace->setEnabled(false);
    m_counts->setText(text);
    m_preview->setRowCount(0);
    m_preview->setColumnCount(0);
}

/// The statements are made here, where the counters of the session are; they run beside the windows.
void ReplaceDialog::count()
{
    const BatchReplace replacement = batch();
    QHash<int, QString> errors;
    for (const auto& [row, text] : replacement.errors())
        errors.insert(int(row), text);
    m_model->setErrors(errors);
    ReplacePlan plan;
    try {
        plan = replacement.plan();
    } catch (const RowRefused& refused) {
        showNothing(replacement.rows.isEmpty() ? u"Choisissez dans l'arbre les champs à remplacer."_s : refused.text);
        return Q_EMIT counted();
    }
    const int generation = m_generation;
    auto counts = std::make_shared<ReplaceCounts>();
    auto records = std::make_shared<QList<ReplacePreview>>();
    jet::Database* database = &m_around.world.database;
    const QPointer<ReplaceDialog> self(this);
    m_around.runner.start({[=](platform::Progression& progression) {
                               const data::Cancellable running(*database, progression);
                               *records = replacePreview(*database, plan, previewRecords);
                               *counts = replaceCounts(*database, plan);
                           },
                           [=](std::exception_ptr failure) {
                               if (!self || generation != self->m_generation)
                                   return;
                               if (failure)
                                   self->fail(failure);
                               else
                                   self->showCounts(*counts, *records);
                               Q_EMIT self->counted();
                           },
                           [] {}, u"Aperçu du remplacement"_s});
}

/// Numbers of people, places and taxa as names.
QString ReplaceDialog::shown(const Node* field, const QString& value) const
{
    bool number = false;
    const int id = value.toInt(&number);
    if (!field || !number || !m_around.context.names)
        return value;
    switch (field->ctype()) {
    case data::Botaniste:
        return m_around.context.names->botaniste(id);
    case data::Localité:
        return m_around.context.names->localité(id);
    case data::Taxon:
        return m_around.context.names->taxon(id);
    default:
        return value;
    }
}

void ReplaceDialog::showCounts(const ReplaceCounts& counts, const QList<ReplacePreview>& records)
{
    QStringList parts{countText(counts.changed, u"enregistrement à modifier"_s, u"enregistrements à modifier"_s)};
    if (counts.unchanged > 0)
        parts << u"dont "_s + countText(counts.unchanged, u"garde sa valeur"_s, u"gardent leur valeur"_s);
    if (counts.locked > 0)
        parts << countText(counts.locked, u"verrouillé, qui ne change pas"_s, u"verrouillés, qui ne changent pas"_s);
    if (counts.missed > 0)
        parts << countText(counts.missed, u"sans taxon valide, qui ne change pas"_s,
                           u"sans taxon valide, qui ne changent pas"_s);
    m_counts->setText(parts.join(u", "_s) + u'.');
    QStringList headers{u"ID "_s + m_module.name};
    for (int row = 0; row < m_model->rowCount(); ++row)
        headers << m_model->caption(row) + u" : avant"_s << u"après"_s;
    m_preview->setColumnCount(int(headers.size()));
    m_preview->setHorizontalHeaderLabels(headers);
    m_preview->setRowCount(int(records.size()));
    for (int at = 0; at < records.size(); ++at) {
        m_preview->setItem(at, 0, cell(QString::number(records[at].id)));
        for (int row = 0; row < records[at].before.size(); ++row) {
            const Node* field = m_model->field(row);
            m_preview->setItem(at, 1 + 2 * row, cell(shown(field, records[at].before[row])));
            QTableWidgetItem* after = cell(shown(field, records[at].after[row]));
            QFont font = after->font();
            font.setBold(records[at].before[row] != records[at].after[row]);
            after->setFont(font);
            m_preview->setItem(at, 2 + 2 * row, after);
        }
    }
    m_preview->resizeColumnsToContents();
    m_announced = counts.changed;
    m_ready = true;
    m_replace->setEnabled(counts.changed > 0 && !m_running);
}

void ReplaceDialog::fail(std::exception_ptr failure)
{
    try {
        std::rethrow_exception(failure);
    } catch (const jet::Error& error) {
        showNothing(error.number() == jet::cancelledError ? u"L'aperçu a été interrompu."_s : error.description());
    } catch (const RowRefused& refused) {
        showNothing(refused.text);
    }
}

// --- Replacement -----------------------------------------------------------------------------

void ReplaceDialog::replace()
{
    if (!m_ready || m_running || m_announced == 0)
        return;
    const BatchReplace replacement = batch();
    if (!m_around.world.dialogues.confirm(replacement.question(), replacement.title()))
        return;
    try {
        run(replacement.plan());
    } catch (const RowRefused&) {
        fail(std::current_exception());
    }
}

void ReplaceDialog::run(const ReplacePlan& plan)
{
    m_running = true;
    setEnabled(false);
    auto changed = std::make_shared<int>(0);
    jet::Database* database = &m_around.world.database;
    platform::Dialogues* dialogues = &m_around.world.dialogues;
    const qint64 announced = m_announced;
    const QPointer<ReplaceDialog> self(this);
    m_around.runner.start({[=](platform::Progression& progression) {
                               const data::Cancellable running(*database, progression);
                               *changed = runReplacement(*database, plan, announced);
                           },
                           [=](std::exception_ptr failure) {
                               if (self) {
                                   self->m_running = false;
                                   self->setEnabled(true);
                               }
                               try {
                                   if (failure)
                                       std::rethrow_exception(failure);
                                   dialogues->tell(replacedText(*changed), plan.title);
                                   if (self) {
                                       Q_EMIT self->replaced(*changed);
                                       self->accept();
                                   }
                               } catch (const RowRefused& refused) {
                                   dialogues->tell(refused.text, plan.title, platform::BoxIcon::Stop);
                               } catch (const jet::Error& error) {
                                   if (error.number() != jet::cancelledError)
                                       dialogues->tell(error.description(), plan.title, platform::BoxIcon::Stop);
                               }
                           },
                           [] {}, plan.title});
}

} // namespace query
