#include "editing/ui/DraftKeeper.h"

#include "platform/ReplaceFile.h"

#include <QFile>
#include <QJsonDocument>
#include <QLoggingCategory>
#include <utility>

namespace editing {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(draftLog, "herbora.draft")

constexpr int pauseMilliseconds = 2000;
constexpr int mostDrafts = 9;

QString numbered(const QString& file, int number)
{
    return number < 2 ? file : file + u'-' + QString::number(number);
}

} // namespace

DraftKeeper::DraftKeeper(QString file, std::function<QJsonObject()> draft, QObject* parent)
    : QObject(parent), m_file(std::move(file)), m_left(left(m_file)), m_draft(std::move(draft))
{
    const QString first = m_file;
    for (int number = 1; number <= mostDrafts && QFile::exists(m_file); ++number)
        m_file = numbered(first, number);
    if (!m_file.isEmpty())
        platform::removeUnfinished(m_file);
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
    const QString error = platform::replaceFile(m_file, QJsonDocument(draft).toJson());
    if (error.isEmpty())
        m_written = true;
    else
        qCWarning(draftLog).noquote() << m_file << error;
}

QString DraftKeeper::left(const QString& file)
{
    for (int number = 1; number <= mostDrafts && !file.isEmpty(); ++number) {
        if (QFile::exists(numbered(file, number)))
            return numbered(file, number);
    }
    return {};
}

QJsonObject DraftKeeper::kept() const
{
    QFile file(m_left);
    if (m_left.isEmpty() || !file.exists())
        return {};
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(draftLog).noquote() << m_left << file.errorString();
        return {};
    }
    return QJsonDocument::fromJson(file.readAll()).object();
}

void DraftKeeper::takeUp()
{
    if (m_left.isEmpty())
        return;
    m_file = std::exchange(m_left, {});
    m_written = true;
    touch();
}

bool DraftKeeper::removed(const QString& file)
{
    if (file.isEmpty() || !QFile::exists(file) || QFile::remove(file))
        return true;
    qCWarning(draftLog).noquote() << "not removed:" << file;
    return false;
}

void DraftKeeper::forget()
{
    if (removed(m_left))
        m_left.clear();
}

void DraftKeeper::discard()
{
    m_timer.stop();
    if (std::exchange(m_written, false))
        removed(m_file);
}

} // namespace editing
