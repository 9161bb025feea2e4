// summarise_log LOG
//
// Prints what a log holds: its times, its types, and what is between the blocks.

#include "tqx/log/DataError.h"
#include "tqx/log/source/OpenSource.h"
#include "tqx/log/stream/BlockStream.h"
#include "tqx/log/summary/StreamSummary.h"

#include <cstdio>
#include <memory>
#include <string>

namespace
{

class Reports : public tqx::StreamListener
{
public:
    explicit Reports(tqx::StreamSummary& summary) : m_summary(summary) {}

    void onGap(const tqx::StreamGap& gap) override { m_summary.addDamage(gap); }
    void onNeighbour(const std::string&, const tqx::Neighbour& neighbour) override
    {
        m_summary.addNeighbour(neighbour);
    }
    void onUndecodable(const std::string&, const tqx::Block&, int32_t) override {}

private:
    tqx::StreamSummary& m_summary;
};

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return 1;
    try {
        const std::unique_ptr<tqx::ByteSource> source = tqx::openSource(argv[1]);
        tqx::StreamSummary summary;
        Reports reports(summary);
        tqx::BlockStream stream(*source, &reports);
        for (tqx::Block block = {}; stream.next(block);)
            summary.add(stream, block);

        if (summary.getFirst()) {
            std::printf("%s to %s\n", tqx::dateText(*summary.getFirst()).c_str(),
                        tqx::dateText(*summary.getLast()).c_str());
        }
        for (const auto& [number, type] : summary.getTypes()) {
            std::printf("%6llu  %s\n", static_cast<unsigned long long>(type->blocks),
                        tqx::describeBlock(number).c_str());
        }
        const tqx::NeighbourCount& sentences = stream.getCounts().of(tqx::NeighbourKind::Nmea);
        std::printf("%6llu  NMEA sentences\n%6llu  damaged places\n",
                    static_cast<unsigned long long>(sentences.count),
                    static_cast<unsigned long long>(summary.getDamagedPlaces()));
    } catch (const tqx::DataError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
