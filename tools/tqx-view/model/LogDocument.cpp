#include "model/LogDocument.h"

#include "model/TqxLog.h"

#include <QElapsedTimer>

#include <exception>
#include <mutex>
#include <utility>

namespace tqx::view
{

LogDocument::LogDocument(QObject* parent) : QObject(parent)
{
    m_timer.setInterval(followMillis);
    connect(&m_timer, &QTimer::timeout, this, &LogDocument::lookForMore);
}

LogDocument::~LogDocument() = default;

void LogDocument::open(const QStringList& paths)
{
    m_tasks.cancel();
    m_isLooking = false;
    m_paths = paths;
    m_isLoading = true;
    Q_EMIT loading();
    std::vector<std::string> names;
    for (const QString& path : paths)
        names.push_back(path.toLocal8Bit().toStdString());
    m_tasks.run([this, names](const TaskToken& token) {
        std::mutex mutex;
        QElapsedTimer sinceReport;
        sinceReport.start();
        const auto report = [&](uint64_t done, uint64_t all) {
            const std::lock_guard lock(mutex);
            if (sinceReport.elapsed() < 100)
                return;
            sinceReport.restart();
            QMetaObject::invokeMethod(
                this, [this, done, all] { Q_EMIT progress(done, all); }, Qt::QueuedConnection);
        };
        QString reason;
        try {
            // The first log sets up the metadata; the window need not wait for that.
            const auto log = std::make_shared<const TqxLog>(openContent(names, token, report));
            QMetaObject::invokeMethod(
                this,
                [this, log, token] {
                    if (!token.isCancelled())
                        take(log, false);
                },
                Qt::QueuedConnection);
            return;
        } catch (const Cancelled&) {
            return;
        } catch (const std::exception& error) {
            reason = QString::fromLocal8Bit(error.what());
        }
        QMetaObject::invokeMethod(
            this,
            [this, reason, token] {
                if (token.isCancelled())
                    return;
                close();
                Q_EMIT failed(reason);
            },
            Qt::QueuedConnection);
    });
}

void LogDocument::take(std::shared_ptr<const TqxLog> log, bool isContinued)
{
    m_isLoading = false;
    m_tqxLog = std::move(log);
    m_log = m_tqxLog;
    Q_EMIT opened(isContinued);
    const std::string& warning = m_tqxLog->getContent().warning;
    if (!isContinued && !warning.empty())
        Q_EMIT warned(QString::fromStdString(warning));
}

void LogDocument::show(std::shared_ptr<const MessageLog> log, bool isContinued)
{
    m_tasks.cancel();
    m_isLoading = false;
    m_isLooking = false;
    m_tqxLog.reset();
    m_log = std::move(log);
    Q_EMIT opened(isContinued);
}

void LogDocument::close()
{
    m_paths.clear();
    show(nullptr);
}

bool LogDocument::canFollow() const
{
    return m_tqxLog && !m_tqxLog->getContent().growing.empty();
}

void LogDocument::setFollowing(bool isFollowing)
{
    m_isFollowing = isFollowing;
    if (isFollowing) {
        m_timer.start();
    } else {
        m_timer.stop();
    }
}

void LogDocument::lookForMore()
{
    if (!canFollow() || m_isLoading || m_isLooking)
        return;
    m_isLooking = true;
    m_tasks.run([this, log = m_tqxLog](const TaskToken& token) {
        std::shared_ptr<const TqxLog> longer;
        QString reason;
        try {
            TqxContent content = extendContent(log->getContent(), token);
            if (content.index != log->getContent().index)
                longer = std::make_shared<const TqxLog>(std::move(content));
        } catch (const Cancelled&) {
            return;
        } catch (const std::exception& error) {
            reason = QString::fromLocal8Bit(error.what());
        }
        const bool isContinued = longer && longer->getSize() > log->getSize();
        QMetaObject::invokeMethod(
            this,
            [this, longer, reason, isContinued, token] {
                if (token.isCancelled())
                    return;
                m_isLooking = false;
                if (longer)
                    take(longer, isContinued);
                if (!reason.isEmpty()) {
                    setFollowing(false);
                    Q_EMIT failed(reason);
                }
            },
            Qt::QueuedConnection);
    });
}

} // namespace tqx::view
