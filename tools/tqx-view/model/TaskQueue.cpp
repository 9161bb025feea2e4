#include "model/TaskQueue.h"

#include <utility>

namespace tqx::view
{

TaskQueue::~TaskQueue()
{
    cancel();
    m_pool.waitForDone();
}

TaskToken TaskQueue::run(std::function<void(const TaskToken&)> task)
{
    m_pool.start([token = m_all, task = std::move(task)] {
        if (!token.isCancelled())
            task(token);
    });
    return m_all;
}

void TaskQueue::cancel()
{
    m_all.cancel();
    m_all = TaskToken();
    m_pool.clear();
}

} // namespace tqx::view
