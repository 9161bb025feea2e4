#include "tqx/log/index/BetweenBlocks.h"

#include "tqx/log/DataError.h"
#include "tqx/log/mixed/NeighbourScanner.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace tqx
{

namespace
{

/// Offsets of false blocks, in order.
class Errors
{
public:
    explicit Errors(std::vector<uint64_t> all) : m_offsets(std::move(all)) {}

    /// Skips those before `offset` and returns how many.
    uint64_t passBefore(uint64_t offset)
    {
        const size_t before = m_next;
        while (m_next < m_offsets.size() && m_offsets[m_next] < offset)
            ++m_next;
        return m_next - before;
    }

private:
    std::vector<uint64_t> m_offsets;
    size_t m_next = 0;
};

} // namespace

class BetweenBlocks::Scan final : private NeighbourScanner::Listener
{
public:
    Scan(const Index& index, const RandomAccess& source, StreamListener* hears)
        : m_log(source), m_listener(hears), m_scanner(*this),
          m_checksums(index.getChecksumErrors()), m_lengths(index.getInvalidLengths()),
          m_piece(pieceSize)
    {
        m_counts = index.getCounts();
        m_counts.droppedBytes = 0;
        m_counts.crcErrors = 0;
        m_counts.invalidLengths = 0;
        index.visitGaps([this](const StreamGap& run) {
            m_runs.push_back({run.offset, run.bytes, run.isCut});
        });
    }

    void addBefore(uint64_t offset)
    {
        while (m_next < m_runs.size() && m_runs[m_next].offset < offset)
            add(m_runs[m_next++]);
    }

    const StreamCounts& getCounts() const { return m_counts; }

private:
    static constexpr size_t pieceSize = 1 << 16;

    /// Bytes that belong to no block.
    struct Run {
        uint64_t offset;
        uint64_t bytes;
        bool isCut;
    };

    void add(const Run& run)
    {
        for (uint64_t at = run.offset, end = run.offset + run.bytes; at < end;) {
            const auto wanted = static_cast<size_t>(std::min<uint64_t>(m_piece.size(), end - at));
            const size_t got = m_log.readAt(at, m_piece.data(), wanted);
            if (got != wanted) {
                throw SourceError(fmt::format("{}: {}: the log is shorter than its index",
                                              m_log.getName(), at + got));
            }
            m_scanner.append(at, m_piece.data(), got);
            at += got;
        }
        m_scanner.end();
        m_gap.isCut = run.isCut;
        closeGap();
    }

    // What looks like the start of a block inside a neighbour is not an error.
    void onRecognised(const Neighbour& neighbour) override
    {
        closeGap();
        m_counts.neighbours[static_cast<size_t>(neighbour.kind)].add(neighbour);
        m_checksums.passBefore(neighbour.offset + neighbour.size);
        m_lengths.passBefore(neighbour.offset + neighbour.size);
        if (m_listener != nullptr)
            m_listener->onNeighbour(m_log.getName(), neighbour);
    }

    void onDamage(uint64_t offset, uint64_t count) override
    {
        if (m_gap.bytes == 0)
            m_gap.offset = offset;
        m_gap.bytes += count;
        m_gap.crcErrors += m_checksums.passBefore(offset + count);
        m_gap.invalidLengths += m_lengths.passBefore(offset + count);
    }

    void closeGap()
    {
        if (m_gap.bytes != 0) {
            m_counts.droppedBytes += m_gap.bytes;
            m_counts.crcErrors += m_gap.crcErrors;
            m_counts.invalidLengths += m_gap.invalidLengths;
            m_gap.file = m_log.getName();
            if (m_listener != nullptr)
                m_listener->onGap(m_gap);
        }
        m_gap = StreamGap();
    }

    const RandomAccess& m_log;
    StreamListener* m_listener;
    NeighbourScanner m_scanner;
    Errors m_checksums;
    Errors m_lengths;
    std::vector<uint8_t> m_piece;
    std::vector<Run> m_runs;
    size_t m_next = 0; ///< of the runs, the first that has not been reported
    StreamGap m_gap;
    StreamCounts m_counts;
};

BetweenBlocks::BetweenBlocks(const Index& index, const RandomAccess& log, StreamListener* listener)
    : m_scan(std::make_unique<Scan>(index, log, listener))
{
}

BetweenBlocks::~BetweenBlocks() = default;

void BetweenBlocks::reportBefore(uint64_t offset)
{
    m_scan->addBefore(offset);
}

void BetweenBlocks::reportAll()
{
    m_scan->addBefore(~uint64_t{0});
}

const StreamCounts& BetweenBlocks::getCounts() const
{
    return m_scan->getCounts();
}

StreamCounts reportBetweenBlocks(const Index& index, const RandomAccess& log,
                                 StreamListener* listener)
{
    BetweenBlocks between(index, log, listener);
    between.reportAll();
    return between.getCounts();
}

} // namespace tqx
