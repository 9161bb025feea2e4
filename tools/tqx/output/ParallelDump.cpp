#include "output/ParallelDump.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace tqx::tool
{

ParallelDump::ParallelDump(Output& target, MakeWriter make, unsigned wanted)
    : output(target), makeWriter(std::move(make)),
      threadCount(wanted != 0 ? wanted : std::thread::hardware_concurrency()),
      ownWriter(makeWriter()), filling(std::make_unique<BlockBatch>())
{
    // Reading and decoding keep up with about this many.
    constexpr unsigned most = 8;
    threadCount = std::min(threadCount, most);
    TQX_init_context(&context);
}

ParallelDump::~ParallelDump()
{
    {
        const std::lock_guard lock(mutex);
        isEnding = true;
    }
    hasWork.notify_all();
    for (std::thread& thread : threads)
        thread.join();
}

void ParallelDump::take(BlockStream& stream, const Block& block)
{
    const int32_t result = filling->add(context, block);
    if (result < 0 && result != unknownNumber)
        stream.reportUndecodable(block, result);
    if (filling->isFull())
        submit();
}

void ParallelDump::handOn()
{
    if (!filling->isEmpty())
        submit();
}

void ParallelDump::flush()
{
    handOn();
    {
        std::unique_lock lock(mutex);
        while (!jobs.empty())
            help(lock);
    }
    throwFailure();
    output.flush();
}

// A few blocks, such as those of a short log or of a receiver that sends once a second, are not
// worth a thread.
void ParallelDump::submit()
{
    throwFailure();
    if (threads.empty() && filling->isFull() && threadCount > 1)
        startThreads();
    if (threads.empty())
        return writeHere();
    std::unique_lock lock(mutex);
    jobs.push_back({std::move(filling), false});
    hasWork.notify_one();
    while (idle.empty())
        help(lock);
    filling = std::move(idle.back());
    idle.pop_back();
}

void ParallelDump::writeHere()
{
    filling->write(*ownWriter);
    output.write(filling->getText().view());
    filling->clear();
}

void ParallelDump::startThreads()
{
    for (unsigned i = 0; i < threadCount; ++i) {
        idle.push_back(std::make_unique<BlockBatch>());
        idle.push_back(std::make_unique<BlockBatch>());
    }
    try {
        while (threads.size() + 1 < threadCount)
            threads.emplace_back(
                [this, writer = std::shared_ptr<BlockWriter>(makeWriter())] { work(*writer); });
    } catch (const std::system_error&) {
        threadCount = static_cast<unsigned>(threads.size()) + 1; // that the system grants us
    }
}

void ParallelDump::work(BlockWriter& writer)
{
    std::unique_lock lock(mutex);
    for (;;) {
        hasWork.wait(lock, [this] { return isEnding || claimed < jobs.size(); });
        if (claimed == jobs.size())
            return;
        doJob(lock, writer);
    }
}

/// What the caller's thread does until something has come out.
void ParallelDump::help(std::unique_lock<std::mutex>& lock)
{
    if (claimed < jobs.size())
        doJob(lock, *ownWriter);
    else
        hasRoom.wait(lock);
}

void ParallelDump::doJob(std::unique_lock<std::mutex>& lock, BlockWriter& writer)
{
    Job& job = jobs[claimed++]; // stays where it is while others come and go
    const bool isWanted = !failure && !isEnding;
    lock.unlock();
    std::exception_ptr trouble;
    try {
        if (isWanted)
            job.batch->write(writer);
    } catch (...) {
        trouble = std::current_exception();
    }
    lock.lock();
    if (trouble && !failure)
        failure = trouble;
    job.isWritten = true;
    outputInOrder(lock);
}

void ParallelDump::outputInOrder(std::unique_lock<std::mutex>& lock)
{
    if (isOutput)
        return; // by the thread that does it
    isOutput = true;
    while (!jobs.empty() && jobs.front().isWritten) {
        BlockBatch& batch = *jobs.front().batch;
        const bool isWanted = !failure;
        lock.unlock();
        std::exception_ptr trouble;
        try {
            if (isWanted)
                output.write(batch.getText().view());
        } catch (...) {
            trouble = std::current_exception();
        }
        batch.clear();
        lock.lock();
        if (trouble)
            failure = trouble;
        idle.push_back(std::move(jobs.front().batch));
        jobs.pop_front();
        --claimed;
        hasRoom.notify_one();
    }
    isOutput = false;
}

void ParallelDump::throwFailure()
{
    const std::lock_guard lock(mutex);
    if (failure)
        std::rethrow_exception(failure);
}

} // namespace tqx::tool
