#include "query/ui/ResultPane.h"

#include "platform/ui/Keyboard.h"
#include "query/QueryDefinition.h"

#include <QHBoxLayout>
#include <QLocale>
#include <QSet>
#include <QVBoxLayout>

namespace query {

using namespace Qt::StringLiterals;

namespace {

struct ModeLook {
    QString key;
    QString text;
    QString icon;
    QString tip;
};

const QList<ModeLook>& modeLooks()
{
    static const QList<ModeLook> looks{
        {modeData, u"Données"_s, u"view-list-details"_s, u"Le résultat en lignes et colonnes"_s},
        {modePicture, u"Images"_s, u"view-list-icons"_s, u"Les images des enregistrements du résultat"_s},
        {modeMap, u"Carte"_s, u"applications-internet"_s, u"Les localités du résultat sur une carte"_s}};
    return looks;
}

/// A record may have several rows; rows without one have 0.
QList<qint32> once(const QList<qint32>& rows)
{
    QList<qint32> ids;
    QSet<qint32> known;
    for (const qint32 id : rows) {
        if (id > 0 && !known.contains(id)) {
            known.insert(id);
            ids << id;
        }
    }
    return ids;
}

QToolButton* button(QWidget* parent, const QString& name, const QString& icon, const QString& tip)
{
    auto* made = new QToolButton(parent);
    made->setObjectName(name);
    made->setIcon(QIcon::fromTheme(icon));
    made->setToolTip(tip);
    made->setAccessibleName(tip);
    made->setAutoRaise(true);
    return made;
}

} // namespace

ResultPane::ResultPane(platform::TaskRunner& runner, QList<ResultModeFactory> factories, QWidget* parent)
    : QWidget(parent), m_run(runner), m_factories(std::move(factories)), m_mode(modeData),
      m_data(new DataMode(*this, m_run)), m_stack(new QStackedWidget(this)), m_message(new QLabel(this))
{
    setObjectName(u"resultats"_s);
    m_message->setObjectName(u"messageResultat"_s);
    m_message->setAlignment(Qt::AlignCenter);
    m_message->setWordWrap(true);
    m_message->setMargin(24);
    m_message->setTextFormat(Qt::PlainText);
    m_stack->addWidget(m_message);
    m_stack->addWidget(m_data);
    m_modes.insert(modeData, m_data);
    m_shown = m_data;
    connectMode(*m_data);
    connect(m_data, &DataMode::currentChanged, this, &ResultPane::showPanels);
    connect(m_data, &DataMode::columnMenuWanted, this, &ResultPane::columnMenuWanted);
    connect(m_data, &DataMode::dragWanted, this, &ResultPane::dragWanted);
    connect(&m_data->model(), &ResultModel::sortWanted, this, &ResultPane::sortBy);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(makePanels());
    layout->addWidget(m_stack, 1);
    platform::tabAlong({m_pageButtons.value(u"last"_s), m_data}); // the panels stand above
    connectRun();
    showMessage(u"Le résultat de la requête paraît ici."_s);
    showPanels();
}

ResultPane::~ResultPane() = default;

QWidget* ResultPane::makePanels()
{
    auto* bar = new QWidget(this);
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(4, 2, 8, 2);
    layout->setSpacing(2);
    addModes(*layout);
    layout->addStretch(1);
    const QList<QStringList> pages{{u"first"_s, u"go-first"_s, u"Première page"_s},
                                   {u"prev"_s, u"go-previous"_s, u"Page précédente"_s},
                                   {u"next"_s, u"go-next"_s, u"Page suivante"_s},
                                   {u"last"_s, u"go-last"_s, u"Dernière page"_s}};
    for (const QStringList& page : pages) {
        QToolButton* made = button(bar, page[0], page[1], page[2]);
        connect(made, &QToolButton::clicked, this, [this, key = page[0]] { goTo(key); });
        m_pageButtons.insert(page[0], made);
        layout->addWidget(made);
        if (page[0] == u"prev") {
            m_panels.insert(u"page"_s, new QLabel(bar));
            layout->addWidget(m_panels.value(u"page"_s));
        }
    }
    for (const QString& name : {u"nbsel"_s, u"numligne"_s, u"nbligne"_s, u"temps"_s}) {
        auto* panel = new QLabel(bar);
        panel->setObjectName(name);
        panel->setMargin(4);
        m_panels.insert(name, panel);
        layout->addWidget(panel);
    }
    return bar;
}

void ResultPane::addModes(QLayout& layout)
{
    const QStringList possible = possibleModes();
    for (const ModeLook& look : modeLooks()) {
        QToolButton* made = button(this, look.key, look.icon, look.tip);
        made->setText(look.text);
        made->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        made->setCheckable(true);
        made->setAutoExclusive(true);
        made->setChecked(look.key == m_mode);
        made->setEnabled(possible.contains(look.key));
        connect(made, &QToolButton::clicked, this, [this, key = look.key] {
            setMode(key);
            Q_EMIT modeChosen(key);
        });
        m_modeButtons.insert(look.key, made);
        layout.addWidget(made);
    }
}

QStringList ResultPane::possibleModes() const
{
    QStringList keys{modeData};
    for (const ResultModeFactory& factory : m_factories)
        keys << factory.key;
    return keys;
}

// --- Modes -----------------------------------------------------------------------------------

void ResultPane::connectMode(ResultMode& mode)
{
    connect(&mode, &ResultMode::selectionChanged, this, [this, &mode] { takeModeSelection(mode); });
    connect(&mode, &ResultMode::activated, this, &ResultPane::activate);
    connect(&mode, &ResultMode::insertPlacesWanted, this, &ResultPane::insertPlacesWanted);
    connect(&mode, &ResultMode::insertRectangleWanted, this, &ResultPane::insertRectangleWanted);
    connect(&mode, &ResultMode::stateChanged, this, &ResultPane::stateChanged);
    connect(&mode, &ResultMode::failed, this, &ResultPane::failed);
}

/// Makes it at the first need; null for one that nobody makes.
ResultMode* ResultPane::modeOf(const QString& key)
{
    if (ResultMode* made = m_modes.value(key))
        return made;
    for (const ResultModeFactory& factory : m_factories) {
        if (factory.key != key)
            continue;
        ResultMode* mode = factory.make(*this, m_stack);
        m_modes.insert(key, mode);
        m_stack->addWidget(mode);
        connectMode(*mode);
        return mode;
    }
    return nullptr;
}

void ResultPane::setMode(const QString& mode)
{
    ResultMode* wanted = modeOf(mode);
    m_mode = wanted ? mode : modeData;
    m_shown = wanted ? wanted : m_data;
    m_modeButtons.value(m_mode)->setChecked(true);
    if (m_stack->currentWidget() != m_message)
        m_stack->setCurrentWidget(m_shown);
    if (m_seen.value(m_mode, -1) != m_number) {
        m_seen.insert(m_mode, m_number);
        m_shown->rowsReplaced();
    }
    m_run.whenIdle([this] {
        if (hasResult())
            m_shown->setSelection(m_shown == m_data ? ResultSelection() : whole());
    });
    showPanels();
}

ResultSelection ResultPane::whole() const
{
    ResultSelection selection{.records = selectedRecords(), .individuals = {}};
    if (!hasResult() || m_run.isBusy())
        return selection;
    try {
        selection.individuals = m_run.results()->selectedIndividus();
    } catch (const jet::Error& error) {
        Q_EMIT const_cast<ResultPane*>(this)->failed(error.description());
    }
    return selection;
}

void ResultPane::takeModeSelection(ResultMode& mode)
{
    if (&mode != m_data && hasResult()) {
        const ResultSelection chosen = mode.selection();
        const QSet<qint32> wanted(chosen.individuals.begin(), chosen.individuals.end());
        Results& results = *m_run.results();
        results.RefreshSelectedItems(chosen.records);
        const QList<qint32> individuals = wanted.isEmpty() ? QList<qint32>() : this->individuals();
        for (qsizetype row = 0; row < individuals.size(); ++row) {
            if (wanted.contains(individuals[row]))
                results.select(row, true);
        }
        m_data->markSelected();
    }
    showPanels();
    Q_EMIT selectionChanged();
}

void ResultPane::activate(const ResultSelection& selection)
{
    QList<qint32> records = selection.records;
    if (records.isEmpty() && hasResult()) {
        const QList<qint32> all = individuals();
        for (qsizetype row = 0; row < all.size(); ++row) {
            const qint32 id = m_run.results()->item(row);
            if (selection.individuals.contains(all[row]) && !records.contains(id))
                records << id;
        }
    }
    if (!records.isEmpty())
        Q_EMIT activated(records);
}

// --- Runs ------------------------------------------------------------------------------------

void ResultPane::connectRun()
{
    connect(&m_run, &ResultRun::replaced, this, &ResultPane::showReplaced);
    connect(&m_run, &ResultRun::found, this, &ResultPane::showFound);
    connect(&m_run, &ResultRun::stopped, this, [this] {
        if (!hasResult())
            showMessage(u"La requête a été interrompue."_s);
        showPanels();
    });
    connect(&m_run, &ResultRun::failed, this, [this](const QString& description) {
        m_data->rowsReplaced(); // the header shows the order that still is
        if (!hasResult())
            showMessage(description);
        showPanels();
        Q_EMIT failed(description);
    });
}

void ResultPane::start(jet::Database& database, const ResultStatements& statements, bool stay)
{
    m_recordWanted = stay ? currentRecord() : 0;
    m_next = statements;
    if (!hasResult())
        showMessage(u"La requête s'exécute…"_s);
    m_run.start(database, statements.data, u"Requête : "_s + statements.name,
                hasResult() ? m_run.results()->selectedIds() : QList<qint32>());
    showPanels();
}

void ResultPane::again()
{
    if (hasResult())
        start(*m_run.results()->database(), m_statements, true);
}

void ResultPane::sortBy(int column, bool descending)
{
    if (!hasResult())
        return;
    const Results& results = *m_run.results();
    const QString statement = results.orderedBy(column, descending);
    if (statement.isEmpty())
        return m_data->rowsReplaced();
    ResultStatements sorted = m_statements;
    sorted.data = statement;
    start(*results.database(), sorted, true);
}

void ResultPane::clear()
{
    m_run.clear();
    for (const QString& key : m_modes.keys()) {
        if (key != modeData)
            delete m_modes.take(key);
    }
    m_shown = m_data;
    m_seen.clear();
    m_hidden.clear();
    showMessage(u"Le résultat de la requête paraît ici."_s);
}

void ResultPane::showReplaced()
{
    ++m_number;
    if (hasResult()) {
        m_statements = m_next;
        applyHidden();
        showMessage(m_run.results()->CountRow() == 0 ? u"Aucun enregistrement ne répond à la requête."_s : QString());
    }
    setMode(m_mode);
    if (m_seen.value(modeData, -1) != m_number) {
        m_seen.insert(modeData, m_number);
        m_data->rowsReplaced();
    }
    returnToRecord();
    showPanels();
    Q_EMIT selectionChanged();
}

void ResultPane::showFound()
{
    m_data->rowsFound();
    if (m_shown != m_data)
        m_shown->rowsFound();
    returnToRecord();
    showPanels();
}

/// The record that was the current one before the query ran again is so again.
void ResultPane::returnToRecord()
{
    if (m_recordWanted == 0 || !hasResult())
        return;
    const qint64 row = m_run.results()->rowOf(m_recordWanted);
    if (row < 0)
        return;
    m_recordWanted = 0;
    if (row / Results::pageSize != m_run.results()->page()) {
        m_run.results()->showPageOf(row);
        m_data->showPage();
    }
    m_data->setCurrentRow(row);
}

void ResultPane::valuesChanged(const QStringList& modules)
{
    if (hasResult())
        m_data->valuesChanged(modules);
    if (m_shown != m_data)
        m_shown->valuesChanged(modules);
    for (auto seen = m_seen.begin(); seen != m_seen.end(); ++seen) {
        if (seen.key() != m_mode && seen.key() != modeData)
            seen.value() = -1; // shown anew when it comes up
    }
}

void ResultPane::goTo(const QString& page)
{
    if (!hasResult())
        return;
    m_run.results()->command(page);
    m_data->showPage();
    showPanels();
}

void ResultPane::showMessage(const QString& text)
{
    m_message->setText(text);
    m_stack->setCurrentWidget(text.isEmpty() ? static_cast<QWidget*>(m_shown) : m_message);
}

void ResultPane::showPanels()
{
    const Results* results = m_run.results();
    for (auto page = m_pageButtons.begin(); page != m_pageButtons.end(); ++page) {
        page.value()->setEnabled(results && results->enabled(page.key()));
        page.value()->setVisible(results && results->pageCount() > 1 && m_shown == m_data);
    }
    QLabel* number = m_panels.value(u"page"_s);
    number->setVisible(results && results->pageCount() > 1 && m_shown == m_data);
    if (results)
        number->setText(u"Page "_s + QString::number(results->page() + 1) + u" / "_s
                        + QString::number(results->pageCount()));
    const qint64 line = m_data->currentRow();
    m_panels.value(u"nbsel"_s)->setText(results ? results->textSelection() : QString());
    m_panels.value(u"numligne"_s)->setText(line < 0 ? QString() : Results::textLine(line + 1));
    m_panels.value(u"nbligne"_s)->setText(results ? results->textCount() : QString());
    m_panels.value(u"temps"_s)->setText(results && results->isComplete() ? results->textTime() : QString());
    Q_EMIT stateChanged();
}

// --- What is known ---------------------------------------------------------------------------

QList<qint32> ResultPane::selectedRecords() const
{
    return hasResult() ? once(m_run.results()->selectedIds()) : QList<qint32>();
}

QList<qint32> ResultPane::recordsAround(qint32 record, qint64 most) const
{
    if (!hasResult())
        return {};
    const std::vector<qint32>& items = m_run.results()->items();
    const qint64 row = m_run.results()->rowOf(record);
    const qint64 first = std::max<qint64>(0, std::min(row - most / 2, qint64(items.size()) - most));
    const qint64 last = std::min(first + most, qint64(items.size()));
    return once(QList<qint32>(items.begin() + first, items.begin() + last));
}

qint32 ResultPane::currentRecord() const
{
    return hasResult() ? m_run.results()->item(m_data->currentRow()) : 0;
}

void ResultPane::hideColumn(int column)
{
    const QString header = hasResult() ? m_run.results()->HeaderColumn(column) : QString();
    if (header.isEmpty())
        return;
    m_hidden << header;
    m_run.whenIdle([this] { showColumns(); }); // an export may be at them
}

void ResultPane::showColumns()
{
    if (!hasResult())
        return;
    m_run.results()->showAllCols();
    applyHidden();
    m_data->rowsReplaced();
    Q_EMIT stateChanged();
}

void ResultPane::applyHidden()
{
    for (int column = m_run.results()->Cols() - 1; column >= 0; --column) {
        if (m_hidden.contains(m_run.results()->HeaderColumn(column)))
            m_run.results()->RemoveCol(column);
    }
}

void ResultPane::showHiddenColumns()
{
    m_hidden.clear();
    m_run.whenIdle([this] { showColumns(); });
}

QString ResultPane::statement(const QString& mode) const
{
    if (mode == modePicture)
        return m_statements.picture;
    return mode == modeMap ? m_statements.map : m_statements.data;
}

QList<qint32> ResultPane::records() const
{
    if (!hasResult())
        return {};
    const std::vector<qint32>& items = m_run.results()->items();
    return QList<qint32>(items.begin(), items.end());
}

QList<qint32> ResultPane::individuals() const
{
    if (!hasResult() || m_run.isBusy())
        return {};
    try {
        return m_run.results()->individus();
    } catch (const jet::Error& error) {
        Q_EMIT const_cast<ResultPane*>(this)->failed(error.description());
        return {};
    }
}

QVariant ResultPane::value(qint64 row, int column) const
{
    return hasResult() && (m_run.results()->isRead(row) || !m_run.isBusy()) ? m_run.results()->value(row, column)
                                                                            : QVariant();
}

QString ResultPane::text(qint64 row, int column) const
{
    return hasResult() && (m_run.results()->isRead(row) || !m_run.isBusy()) ? m_run.results()->TextMatrix(row, column)
                                                                            : QString();
}

} // namespace query
