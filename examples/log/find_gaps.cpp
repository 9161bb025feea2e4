// find_gaps LOG
//
// Finds the rate of the blocks in a log, missing and repeated epochs, and what is between the
// blocks.

#include "tqx/log/DataError.h"
#include "tqx/log/source/OpenSource.h"
#include "tqx/log/stream/BlockStream.h"
#include "tqx/log/summary/EpochSet.h"
#include "tqx/log/summary/Intervals.h"
#include "tqx/log/summary/NeighbourSummary.h"

#include <cstdio>
#include <memory>
#include <optional>

namespace
{

class Reports : public tqx::StreamListener
{
public:
    void onGap(const tqx::StreamGap&) override {}
    void onNeighbour(const std::string&, const tqx::Neighbour& neighbour) override
    {
        summary.add(neighbour);
    }
    void onUndecodable(const std::string&, const tqx::Block&, int32_t) override {}

    tqx::NeighbourSummary summary;
};

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return 1;
    try {
        // Several of them share one bound on memory.
        size_t roomForIntervals = 10000;
        size_t roomForEpochs = 10000;
        tqx::Intervals intervals(roomForIntervals);
        tqx::EpochSet epochs(roomForEpochs);
        unsigned repeated = 0;
        const std::unique_ptr<tqx::ByteSource> source = tqx::openSource(argv[1]);
        Reports reports;
        tqx::BlockStream stream(*source, &reports);
        std::optional<tqx::GnssMillis> last;
        for (tqx::Block block = {}; stream.next(block);) {
            const auto time = block.getTime();
            if (!time || time == last)
                continue;
            last = time;
            intervals.add(*time);
            repeated += epochs.add(*time) ? 0 : 1;
        }
        if (const auto usual = intervals.getUsual()) {
            std::printf("usually every %llu ms, %llu gaps\n",
                        static_cast<unsigned long long>(*usual),
                        static_cast<unsigned long long>(intervals.getGapCount(*usual)));
            for (const tqx::Intervals::Gap& gap : intervals.getGaps(*usual, 5)) {
                std::printf("%llu missing after %s\n", static_cast<unsigned long long>(gap.missing),
                            tqx::dateText(gap.after).c_str());
            }
        }
        std::printf("%u epochs come again\n", repeated);
        for (const auto& [address, count] : reports.summary.getSentences())
            std::printf("%s %llu\n", address.c_str(), static_cast<unsigned long long>(count.count));
    } catch (const tqx::DataError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
