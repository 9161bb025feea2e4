// Prints the code ranges of a log: satellite, signal and metres.
#include <tqx/gnss/observation/ObservationGatherer.h>
#include <tqx/log/record/RecordDecoder.h>
#include <tqx/log/source/OpenSource.h>
#include <tqx/log/stream/BlockStream.h>

#include <cstdio>

int main(int, char** argv)
{
    const auto source = tqx::openSource(argv[1]);
    tqx::BlockStream stream(*source);
    tqx::RecordDecoder decoder;
    tqx::ObservationGatherer gatherer([](tqx::ObservationEpoch& epoch) {
        for (const tqx::Observation& observation : epoch.observations)
            std::printf("%s %c%c %.3f\n", observation.satellite.text().c_str(),
                        observation.code.band, observation.code.attribute, observation.range);
        return true;
    });
    for (tqx::Block block = {}; stream.next(block);)
        if (tqx::ObservationGatherer::wants(block.getNumber()) && decoder.decode(block) > 0)
            gatherer.take(decoder.getDecoded());
    gatherer.finish();
}
