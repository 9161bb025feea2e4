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
    explicit Errors(std::vector<uint64_t> all) : offsets(std::move(all)) {}

    /// Passes those before `offset` and returns how many.
    uint64_t passBefore(uint64_t offset)
    {
        const size_t before = next;
        while (next < offsets.size() && offsets[next] < offset)
            ++next;
        return next - before;
    }

private:
    std::vector<uint64_t> offsets;
    size_t next = 0;
};

class Scan : private NeighbourScanner::Listener
{
public:
    Scan(const Index& index, const RandomAccess& source, StreamListener* hears)
        : log(source), listener(hears), scanner(*this), checksums(index.getChecksumErrors()),
          lengths(index.getInvalidLengths()), piece(pieceSize)
    {
        counts = index.getCounts();
        counts.droppedBytes = 0;
        counts.crcErrors = 0;
        counts.invalidLengths = 0;
    }

    void add(const StreamGap& run)
    {
        for (uint64_t at = run.offset, end = run.offset + run.bytes; at < end;) {
            const auto wanted = static_cast<size_t>(std::min<uint64_t>(piece.size(), end - at));
            const size_t got = log.readAt(at, piece.data(), wanted);
            if (got != wanted)
                throw SourceError(fmt::format("{}: {}: the log is shorter than its index",
                                              log.getName(), at + got));
            scanner.append(at, piece.data(), got);
            at += got;
        }
        scanner.end();
        gap.isCut = run.isCut;
        closeGap();
    }

    const StreamCounts& getCounts() const { return counts; }

private:
    static constexpr size_t pieceSize = 1 << 16;

    // What looks like the start of a block within a neighbour is no error.
    void onRecognised(const Neighbour& neighbour) override
    {
        closeGap();
        counts.neighbours[static_cast<size_t>(neighbour.kind)].add(neighbour);
        checksums.passBefore(neighbour.offset + neighbour.size);
        lengths.passBefore(neighbour.offset + neighbour.size);
        if (listener != nullptr)
            listener->onNeighbour(log.getName(), neighbour);
    }

    void onDamage(uint64_t offset, uint64_t count) override
    {
        if (gap.bytes == 0)
            gap.offset = offset;
        gap.bytes += count;
        gap.crcErrors += checksums.passBefore(offset + count);
        gap.invalidLengths += lengths.passBefore(offset + count);
    }

    void closeGap()
    {
        if (gap.bytes != 0) {
            counts.droppedBytes += gap.bytes;
            counts.crcErrors += gap.crcErrors;
            counts.invalidLengths += gap.invalidLengths;
            gap.file = log.getName();
            if (listener != nullptr)
                listener->onGap(gap);
        }
        gap = StreamGap();
    }

    const RandomAccess& log;
    StreamListener* listener;
    NeighbourScanner scanner;
    Errors checksums;
    Errors lengths;
    std::vector<uint8_t> piece;
    StreamGap gap;
    StreamCounts counts;
};

} // namespace

StreamCounts reportBetweenBlocks(const Index& index, const RandomAccess& log,
                                 StreamListener* listener)
{
    Scan scan(index, log, listener);
    index.visitGaps([&](const StreamGap& run) { scan.add(run); });
    return scan.getCounts();
}

} // namespace tqx
