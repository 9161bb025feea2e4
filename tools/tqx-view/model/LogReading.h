#pragma once

#include "model/TaskQueue.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>

namespace tqx::view
{

/// What is gathered of a whole log in another thread: the part that does not depend on what it is.
class LogReading : public QObject
{
    Q_OBJECT

public:
    bool isReading() const { return m_isReading; }

Q_SIGNALS:
    /// There is another result, or reading has begun.
    void changed();
    void failed(const QString& reason);

protected:
    using Result = std::shared_ptr<const void>;
    /// Returns null when its token is cancelled; may throw std::exception.
    using Read = std::function<Result(const TaskToken&)>;

    explicit LogReading(QObject* parent) : QObject(parent) {}

    /// Reads in place of what is being read. With `isContinued`, as for a log that has become
    /// longer, what is being read is brought to its end first: otherwise a log that grows faster
    /// than it is read would never have a result.
    void start(Read read, bool isContinued);

    /// Reads nothing any more; changed() is emitted.
    void stop();

    /// Takes what a Read has returned, in the thread of this object.
    virtual void take(const Result& result) = 0;

private:
    void run(Read read);
    void finish(const Result& result, const QString& reason);

    Read m_next; ///< begins when the current one has ended
    bool m_isReading = false;
    TaskQueue m_tasks;
};

} // namespace tqx::view
