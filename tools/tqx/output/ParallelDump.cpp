#include "output/ParallelDump.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace tqx::tool
{

ParallelDump::ParallelDump(BatchTarget& target, MakeWriter makeWriter, unsigned threads,
                           const Schema& schema)
    : m_target(target), m_makeWriter(std::move(makeWriter)),
      m_threadCount(threads != 0 ? threads : std::thread::hardware_concurrency()), m_state(schema),
      m_ownWriter(m_makeWriter()), m_filling(std::make_unique<BlockBatch>())
{
    // Reading and decoding keep up with about this many.
    constexpr unsigned most = 8;
    m_threadCount = std::min(m_threadCount, most);
}

ParallelDump::~ParallelDump()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isEnding = true;
    }
    m_hasWork.notify_all();
    for (std::thread& thread : m_threads)
        thread.join();
}

void ParallelDump::take(BlockStream& stream, const Block& block)
{
    const int32_t result = m_filling->add(m_state, block, stream.getContext());
    m_isHandedOn = false;
    if (result < 0 && result != unknownNumber)
        stream.reportUndecodable(block, result);
    if (m_filling->isFull())
        submit(false);
}

void ParallelDump::handOn()
{
    if (m_isHandedOn)
        return;
    m_isHandedOn = true;
    submit(true);
}

void ParallelDump::flush()
{
    handOn();
    {
        std::unique_lock lock(m_mutex);
        while (!m_jobs.empty())
            help(lock);
    }
    throwFailure();
    m_target.flush();
}

// A few blocks, such as those of a short log or of a receiver at 1 Hz, are not worth a thread.
void ParallelDump::submit(bool isLast)
{
    throwFailure();
    if (m_threads.empty() && m_filling->isFull() && m_threadCount > 1)
        startThreads();
    if (m_threads.empty())
        return writeHere(isLast);
    std::unique_lock lock(m_mutex);
    m_jobs.push_back({std::move(m_filling), isLast, false});
    m_hasWork.notify_one();
    while (m_idle.empty())
        help(lock);
    m_filling = std::move(m_idle.back());
    m_idle.pop_back();
}

void ParallelDump::writeHere(bool isLast)
{
    m_filling->write(*m_ownWriter);
    m_target.put(m_filling->getText());
    if (isLast)
        m_target.flush();
    m_filling->clear();
}

void ParallelDump::startThreads()
{
    for (unsigned i = 0; i < m_threadCount; ++i) {
        m_idle.push_back(std::make_unique<BlockBatch>());
        m_idle.push_back(std::make_unique<BlockBatch>());
    }
    try {
        while (m_threads.size() + 1 < m_threadCount) {
            m_threads.emplace_back(
                [this, writer = std::shared_ptr<BatchWriter>(m_makeWriter())] { work(*writer); });
        }
    } catch (const std::system_error&) {
        m_threadCount = static_cast<unsigned>(m_threads.size()) + 1; // that the system grants
    }
}

void ParallelDump::work(BatchWriter& writer)
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_hasWork.wait(lock, [this] { return m_isEnding || m_claimed < m_jobs.size(); });
        if (m_claimed == m_jobs.size())
            return;
        doJob(lock, writer);
    }
}

/// Work of the caller's thread while it waits for output.
void ParallelDump::help(std::unique_lock<std::mutex>& lock)
{
    if (m_claimed < m_jobs.size()) {
        doJob(lock, *m_ownWriter);
    } else {
        m_hasRoom.wait(lock);
    }
}

void ParallelDump::doJob(std::unique_lock<std::mutex>& lock, BatchWriter& writer)
{
    Job& job = m_jobs[m_claimed++]; // keeps its address while others come and go
    const bool isWanted = !m_failure && !m_isEnding;
    lock.unlock();
    std::exception_ptr trouble;
    try {
        if (isWanted)
            job.batch->write(writer);
    } catch (...) {
        trouble = std::current_exception();
    }
    lock.lock();
    if (trouble && !m_failure)
        m_failure = trouble;
    job.isWritten = true;
    outputInOrder(lock);
}

void ParallelDump::outputInOrder(std::unique_lock<std::mutex>& lock)
{
    if (m_isOutput)
        return; // by the thread that does it
    m_isOutput = true;
    while (!m_jobs.empty() && m_jobs.front().isWritten) {
        BlockBatch& batch = *m_jobs.front().batch;
        const bool isLast = m_jobs.front().isLast;
        const bool isWanted = !m_failure;
        lock.unlock();
        std::exception_ptr trouble;
        try {
            if (isWanted)
                m_target.put(batch.getText());
            if (isWanted && isLast)
                m_target.flush();
        } catch (...) {
            trouble = std::current_exception();
        }
        batch.clear();
        lock.lock();
        if (trouble)
            m_failure = trouble;
        m_idle.push_back(std::move(m_jobs.front().batch));
        m_jobs.pop_front();
        --m_claimed;
        m_hasRoom.notify_one();
    }
    m_isOutput = false;
}

void ParallelDump::throwFailure()
{
    const std::lock_guard lock(m_mutex);
    if (m_failure)
        std::rethrow_exception(m_failure);
}

} // namespace tqx::tool
