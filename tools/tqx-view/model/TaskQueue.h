#pragma once

#include <QThreadPool>

#include <atomic>
#include <functional>
#include <memory>

namespace tqx::view
{

/// Whether the result of a task is still wanted. Copies speak of the same task.
class TaskToken
{
public:
    TaskToken() : m_cancelled(std::make_shared<std::atomic<bool>>(false)) {}

    bool isCancelled() const { return m_cancelled->load(std::memory_order_relaxed); }
    void cancel() const { m_cancelled->store(true, std::memory_order_relaxed); }

private:
    std::shared_ptr<std::atomic<bool>> m_cancelled;
};

/// Runs tasks one after the other in a thread of its own. Its functions are called by the thread
/// that made it; tasks look at their token often, and hand results back through the event queue of
/// the receiver (QMetaObject::invokeMethod).
class TaskQueue
{
public:
    TaskQueue() { m_pool.setMaxThreadCount(1); }

    /// Cancels what runs and waits for its end, so that no task outlives what it refers to.
    ~TaskQueue();
    TaskQueue(const TaskQueue&) = delete;
    TaskQueue& operator=(const TaskQueue&) = delete;

    /// Appends a task. What it throws ends the program: tasks catch what they call throws.
    TaskToken run(std::function<void(const TaskToken&)> task);

    /// Cancels every task that was given so far; those that have not begun never will.
    void cancel();

private:
    QThreadPool m_pool;
    TaskToken m_all;
};

} // namespace tqx::view
