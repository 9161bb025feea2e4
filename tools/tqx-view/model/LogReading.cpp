#include "model/LogReading.h"

#include <exception>
#include <utility>

namespace tqx::view
{

void LogReading::start(Read read, bool isContinued)
{
    if (isContinued && m_isReading) {
        m_next = std::move(read);
        return;
    }
    m_next = nullptr;
    m_tasks.cancel();
    run(std::move(read));
    Q_EMIT changed();
}

void LogReading::stop()
{
    m_next = nullptr;
    m_tasks.cancel();
    m_isReading = false;
    Q_EMIT changed();
}

void LogReading::run(Read read)
{
    m_isReading = true;
    m_tasks.run([this, read = std::move(read)](const TaskToken& token) {
        Result result;
        QString reason;
        try {
            result = read(token);
        } catch (const std::exception& error) {
            reason = QString::fromUtf8(error.what());
        }
        QMetaObject::invokeMethod(
            this,
            [this, result, reason, token] {
                if (!token.isCancelled())
                    finish(result, reason);
            },
            Qt::QueuedConnection);
    });
}

void LogReading::finish(const Result& result, const QString& reason)
{
    m_isReading = false;
    if (result)
        take(result);
    if (m_next)
        run(std::exchange(m_next, nullptr));
    Q_EMIT changed();
    if (!reason.isEmpty())
        Q_EMIT failed(reason);
}

} // namespace tqx::view
