#pragma once

#include <QThreadPool>

#include <atomic>
#include <functional>
#include <memory>

namespace tqx::view
{

/// Whether the result of a task is still wanted. Copies belong to the same task.
class TaskToken
{
public:
    TaskToken() : m_cancelled(std::make_shared<std::atomic<bool>>(false)) {}

    bool isCancelled() const { return m_cancelled->load(std::memory_order_relaxed); }
    void cancel() const { m_cancelled->store(true, std::memory_order_relaxed); }

private:
    std::shared_ptr<std::atomic<bool>> m_cancelled;
};

/// Runs tasks one by one in a thread of its own. Its functions are called by the thread that made
/// it; tasks check their token often, and pass results back through the event queue of the receiver
/// (QMetaObject::invokeMethod).
class TaskQueue
{
public:
    TaskQueue() { m_pool.setMaxThreadCount(1); }

    /// Cancels the running task and waits for its end, so that no task outlives what it refers to.
    ~TaskQueue();
    TaskQueue(const TaskQueue&) = delete;
    TaskQueue& operator=(const TaskQueue&) = delete;

    /// Appends a task. An exception from it ends the program: tasks must catch what they call.
    TaskToken run(std::function<void(const TaskToken&)> task);

    /// Cancels all tasks so far; those that have not begun never will.
    void cancel();

private:
    QThreadPool m_pool;
    TaskToken m_all;
};

} // namespace tqx::view
