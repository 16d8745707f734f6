#include "editing/ui/DraftKeeper.h"

#include <QFile>
#include <QJsonDocument>
#include <QLoggingCategory>
#include <QSaveFile>

namespace editing {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(draftLog, "herbora.draft")

constexpr int pauseMilliseconds = 2000;

} // namespace

DraftKeeper::DraftKeeper(QString file, std::function<QJsonObject()> draft, QObject* parent)
    : QObject(parent), m_file(std::move(file)), m_draft(std::move(draft))
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(pauseMilliseconds);
    connect(&m_timer, &QTimer::timeout, this, &DraftKeeper::flush);
}

QString DraftKeeper::fileFor(const QString& project)
{
    return project.isEmpty() ? QString() : project + u".saisie"_s;
}

void DraftKeeper::touch()
{
    // Not put off by further typing: a kill in a long flow of typing must find something.
    if (!m_file.isEmpty() && !m_timer.isActive())
        m_timer.start();
}

void DraftKeeper::flush()
{
    m_timer.stop();
    if (m_file.isEmpty())
        return;
    const QJsonObject draft = m_draft();
    if (draft.isEmpty()) {
        if (m_written)
            discard();
        return;
    }
    QSaveFile file(m_file);
    if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(draft).toJson()) < 0 || !file.commit())
        qCWarning(draftLog).noquote() << m_file << file.errorString();
    else
        m_written = true;
}

QJsonObject DraftKeeper::kept() const
{
    QFile file(m_file);
    if (m_file.isEmpty() || !file.exists())
        return {};
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(draftLog).noquote() << m_file << file.errorString();
        return {};
    }
    return QJsonDocument::fromJson(file.readAll()).object();
}

void DraftKeeper::discard()
{
    m_timer.stop();
    if (!m_file.isEmpty() && QFile::exists(m_file) && !QFile::remove(m_file))
        qCWarning(draftLog).noquote() << "not removed:" << m_file;
    m_written = false;
}

} // namespace editing
