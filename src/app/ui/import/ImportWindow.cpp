#include "app/ui/import/ImportWindow.h"

#include "app/Session.h"
#include "jet/Cancelled.h"

#include <QDialogButtonBox>
#include <QPointer>
#include <QVBoxLayout>

namespace app {

using namespace Qt::StringLiterals;

namespace {


const QStringList& titles()
{
    static const QStringList texts{u"1. Le fichier"_s, u"2. Les colonnes"_s, u"3. Les noms"_s, u"4. L'essai"_s, u"5. Le résultat"_s};
    return texts;
}

} // namespace

ImportWindow::ImportWindow(Workplace& place, QWidget* parent)
    : QDialog(parent, Qt::Window), m_place(place), m_pages(new QStackedWidget(this)),
      m_file(new ImportFilePage(importTargets(place.session().modules(), place.session().database().schema()), place.dialogues(), this)),
      m_columns(new ImportColumnsPage(this)), m_names(new ImportNamesPage(this)), m_title(new QLabel(this)),
      m_said(new QLabel(this)), m_progress(new QProgressBar(this)),
      m_back(new QPushButton(u"< Précéde&nt"_s, this)), m_next(new QPushButton(this)),
      m_close(new QPushButton(this))
{
    setObjectName(u"importTableau"_s);
    setWindowTitle(u"Importer un tableau"_s);
    resize(fontMetrics().averageCharWidth() * 130, fontMetrics().lineSpacing() * 34);
    QFont bold = m_title->font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.2);
    m_title->setFont(bold);
    for (QWidget* page : std::initializer_list<QWidget*>{m_file, m_columns, m_names})
        m_pages->addWidget(page);
    m_pages->addWidget(makeReportPage(0));
    m_pages->addWidget(makeReportPage(1));
    m_progress->setTextVisible(true);
    m_progress->hide();
    m_back->setObjectName(u"importPrecedent"_s);
    m_next->setObjectName(u"importSuivant"_s);
    m_close->setObjectName(u"importFermer"_s);
    m_back->setAutoDefault(false);
    m_close->setAutoDefault(false);
    m_next->setDefault(true);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_title);
    layout->addWidget(m_pages, 1);
    layout->addWidget(m_progress);
    auto* row = new QHBoxLayout;
    m_said->setObjectName(u"importArret"_s);
    row->addWidget(m_said);
    row->addStretch(1);
    for (QPushButton* button : {m_back, m_next, m_close})
        row->addWidget(button);
    layout->addLayout(row);
    connect(m_back, &QPushButton::clicked, this, &ImportWindow::back);
    connect(m_next, &QPushButton::clicked, this, &ImportWindow::next);
    connect(m_close, &QPushButton::clicked, this, &ImportWindow::reject);
    connect(m_file, &ImportFilePage::changed, this, &ImportWindow::updateButtons);
    connect(m_columns, &ImportColumnsPage::changed, this, &ImportWindow::updateButtons);
    connect(&place.runner(), &platform::TaskRunner::step, this, [this](const QString& text, int percent) {
        m_progress->setFormat(text + u" (%p %)"_s);
        m_progress->setValue(percent);
    });
    go(File);
}

QWidget* ImportWindow::makeReportPage(int number)
{
    m_text[number] = new QPlainTextEdit(this);
    m_text[number]->setObjectName(number == 0 ? u"importEssai"_s : u"importResultat"_s);
    m_text[number]->setAccessibleName(number == 0 ? u"Rapport de l'essai"_s : u"Rapport de l'importation"_s);
    m_text[number]->setReadOnly(true);
    m_text[number]->setTabChangesFocus(true);
    m_text[number]->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    return m_text[number];
}

void ImportWindow::go(Step step)
{
    m_pages->setCurrentIndex(step);
    m_title->setText(titles()[step]);
    m_said->clear();
    m_pages->currentWidget()->setFocus();
    updateButtons();
}

ImportPlan ImportWindow::plan() const
{
    ImportPlan plan{.file = m_file->file()};
    plan.format = m_file->format();
    plan.target = m_file->target();
    plan.mapping = m_columns->mapping();
    plan.update = m_file->update();
    plan.emptyErases = m_file->emptyErases();
    plan.decisions = m_names->decisions();
    return plan;
}

void ImportWindow::updateButtons()
{
    static const QStringList nextTexts{u"Suivan&t >"_s, u"Suivan&t >"_s, u"Faire l'e&ssai >"_s, u"&Importer"_s, u"&Autre fichier…"_s};
    const QString problem = step() == Columns ? CsvImport::problem(plan()) : QString();
    m_columns->setProblem(problem);
    const bool ready = step() != File || !m_file->rows().isEmpty();
    m_pages->setEnabled(!m_working && !m_away);
    m_back->setEnabled(!m_working && step() != File && step() != Result);
    m_next->setEnabled(!m_working && !m_away && ready && problem.isEmpty());
    m_next->setText(nextTexts[step()]);
    m_close->setText(m_working ? u"A&rrêter"_s : u"Fe&rmer"_s);
    m_progress->setVisible(m_working);
}

void ImportWindow::next()
{
    if (!m_next->isEnabled())
        return;
    switch (step()) {
    case File: return showColumns();
    case Columns: return searchNames();
    case Names: return run(true);
    case Rehearsal: return run(false);
    case Result: return go(File);
    }
}

void ImportWindow::back()
{
    if (m_back->isEnabled())
        go(Step(step() - 1));
}

void ImportWindow::setAway(bool away)
{
    m_away = away;
    updateButtons();
}

void ImportWindow::stop()
{
    if (!m_working)
        return;
    m_place.runner().cancel();
    m_said->setText(u"Arrêt demandé…"_s);
}

void ImportWindow::reject()
{
    if (m_working)
        stop();
    else
        QDialog::reject();
}

/// Columns that were chosen by hand stay as long as file and target do.
void ImportWindow::showColumns()
{
    const ImportTarget target = m_file->target();
    const QStringList header = m_file->rows().value(0);
    const QString key = target.name + u'\n' + header.join(u'\t') + (m_file->update() ? u"\nmodifier"_s : QString());
    if (key != std::exchange(m_mappedFor, key)) {
        try {
            const auto kept = keptMapping(m_place.session().properties(), target.name);
            m_columns->present(m_file->rows(), target, mapColumns(header, target, kept, m_file->update()));
        } catch (const jet::Error& error) {
            return m_place.fail(windowTitle(), error.description());
        }
    }
    go(Columns);
}

void ImportWindow::searchNames()
{
    m_names->present({});
    auto names = std::make_shared<QList<UnknownName>>();
    work(u"Recherche des noms"_s,
         [&session = m_place.session(), plan = plan(), names](platform::Progression& progression) {
             *names = CsvImport(session).unknownNames(plan, progression);
         },
         [this, names] {
             m_names->present(*names);
             go(Names);
         });
}

void ImportWindow::run(bool rehearsal)
{
    auto report = std::make_shared<ImportReport>();
    const QString table = m_file->target().name;
    work(rehearsal ? u"Essai de l'importation"_s : u"Importation"_s,
         [&session = m_place.session(), plan = plan(), report, rehearsal](platform::Progression& progression) {
             *report = CsvImport(session).run(plan, progression, rehearsal);
         },
         [this, report, rehearsal, table] {
             m_text[rehearsal ? 0 : 1]->setPlainText(report->text());
             go(rehearsal ? Rehearsal : Result);
             if (!rehearsal)
                 m_place.written({}); // names may have come to any list
         });
}

void ImportWindow::work(const QString& text, std::function<void(platform::Progression&)> work, std::function<void()> done)
{
    m_working = true;
    m_said->clear();
    m_progress->setValue(0);
    m_progress->setFormat(text);
    updateButtons();
    const QPointer<ImportWindow> self(this);
    m_place.runner().start({std::move(work),
                            [self, done = std::move(done), &place = m_place](std::exception_ptr failure) {
                                if (self) {
                                    self->m_working = false;
                                    self->updateButtons();
                                }
                                try {
                                    if (failure)
                                        std::rethrow_exception(failure);
                                    if (self)
                                        done();
                                } catch (const jet::Error& error) {
                                    if (error.number() != jet::cancelledError)
                                        place.fail(u"Importer un tableau"_s, error.description());
                                    else if (self)
                                        self->m_said->setText(u"Arrêté : rien n'a été écrit."_s);
                                }
                            },
                            [] {}, text});
}

} // namespace app
