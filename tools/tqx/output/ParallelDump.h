#pragma once

#include "io/Sink.h"
#include "options/StreamOptions.h"
#include "output/BatchTarget.h"
#include "output/BlockBatch.h"
#include "output/BlockWriter.h"

#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace tqx::tool
{

/// Dumps the blocks of a stream in order, with one thread per processor making the text. The
/// caller's thread is one of these; it decodes the blocks as one stream. Blocks passed in are
/// written without a further call, however long the next read waits.
class ParallelDump final : public BlockConsumer, public Sink
{
public:
    using MakeWriter = std::function<std::unique_ptr<BatchWriter>()>;

    /// `makeWriter` is called on the caller's thread, once per thread. Blocks are those of the
    /// schema. `threads` 0 means the number of processors; 1 makes all text on the caller's thread.
    ParallelDump(BatchTarget& target, MakeWriter makeWriter, unsigned threads = 0,
                 const Schema& schema = {});
    ~ParallelDump() override;
    ParallelDump(const ParallelDump&) = delete;
    ParallelDump& operator=(const ParallelDump&) = delete;

    void take(BlockStream& stream, const Block& block) override;
    void commit() override {}
    void handOn() override;
    void flush() override;

private:
    struct Job {
        std::unique_ptr<BlockBatch> batch;
        bool isLast;            ///< before waiting for more input
        bool isWritten = false; ///< whether its text has been made
    };

    void submit(bool isLast);
    void writeHere(bool isLast);
    void startThreads();
    void work(BatchWriter& writer);
    void help(std::unique_lock<std::mutex>& lock);
    void doJob(std::unique_lock<std::mutex>& lock, BatchWriter& writer);
    void outputInOrder(std::unique_lock<std::mutex>& lock);
    void throwFailure();

    BatchTarget& m_target;
    MakeWriter m_makeWriter;
    unsigned m_threadCount;
    StreamState m_state;
    bool m_isHandedOn = false; ///< whether everything taken has been
    std::unique_ptr<BatchWriter> m_ownWriter;
    std::unique_ptr<BlockBatch> m_filling;

    std::mutex m_mutex; ///< of what follows
    std::condition_variable m_hasWork;
    std::condition_variable m_hasRoom;
    std::deque<Job> m_jobs;  ///< in the order of the stream, until their text is out
    size_t m_claimed = 0;    ///< of the jobs, those that a thread has begun
    bool m_isOutput = false; ///< whether a thread is putting out the first job
    bool m_isEnding = false;
    std::exception_ptr m_failure; ///< of the first text that could not be made or put out
    std::vector<std::unique_ptr<BlockBatch>> m_idle;

    std::vector<std::thread> m_threads;
};

} // namespace tqx::tool
