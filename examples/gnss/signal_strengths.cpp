// signal_strengths LOG
//
// Prints the mean C/N0 of each signal of each system, and how often lock on it was lost.

#include <tqx/gnss/observation/ObservationGatherer.h>
#include <tqx/log/DataError.h>
#include <tqx/log/record/RecordDecoder.h>
#include <tqx/log/source/OpenSource.h>
#include <tqx/log/stream/BlockStream.h>

#include <cmath>
#include <cstdio>
#include <map>
#include <utility>

namespace
{

struct Signal {
    double sum = 0;
    unsigned count = 0;
    unsigned losses = 0;
};

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return 1;
    try {
        std::map<std::pair<char, tqx::SignalCode>, Signal> signals;
        tqx::ObservationGatherer gatherer([&](const tqx::ObservationEpoch& epoch) {
            for (const tqx::Observation& observation : epoch.observations) {
                Signal& signal = signals[{observation.satellite.system, observation.code}];
                signal.losses += observation.isLost ? 1 : 0;
                if (std::isnan(observation.cn0))
                    continue;
                signal.sum += observation.cn0;
                ++signal.count;
            }
            return true;
        });
        const auto source = tqx::openSource(argv[1]);
        tqx::BlockStream stream(*source);
        tqx::RecordDecoder decoder;
        for (tqx::Block block = {}; stream.next(block);) {
            if (tqx::ObservationGatherer::wants(block.getNumber()) && decoder.decode(block) > 0)
                gatherer.take(decoder.getDecoded());
        }
        gatherer.finish();
        for (const auto& [name, signal] : signals) {
            std::printf("%c %c%c  %4.1f dB-Hz  %u losses\n", name.first, name.second.band,
                        name.second.attribute, signal.count == 0 ? 0 : signal.sum / signal.count,
                        signal.losses);
        }
    } catch (const tqx::DataError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
