// RINEX observations of a simulated log, in turns with raw JSON Lines of the same blocks. Both
// frame nothing and write to memory; RINEX takes two passes, as the tool does.

#include "Turns.h"
#include "tqx/framing/BlockFramer.h"
#include "tqx/gnss/observation/ObservationGatherer.h"
#include "tqx/gnss/rinex/ObservationFile.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/write/RawJson.h"
#include "tqx/simulation/Simulation.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

namespace
{

constexpr int turns = 51;

/// The blocks of a log from which observations are made.
struct Content {
    Content()
    {
        tqx::simulation::SimulationSettings settings;
        tqx::simulation::simulate(settings, log);
        framer.append(reinterpret_cast<const uint8_t*>(log.data()), log.size());
        for (; framer.hasBlock(); framer.takeBlock()) {
            const uint8_t* const data = framer.block().data;
            const auto size = static_cast<uint16_t>(framer.block().size);
            const tqx::Block block = {data, size, 0};
            if (tqx::ObservationGatherer::wants(block.getNumber())) {
                bytes.emplace_back(data, data + size);
                total += size;
            }
        }
    }

    template<typename Use>
    void forEach(Use use) const
    {
        for (const std::vector<uint8_t>& block : bytes)
            use(tqx::Block{block.data(), static_cast<uint16_t>(block.size()), 0});
    }

    tqx::Buffer log;
    tqx::BlockFramer framer;
    std::vector<std::vector<uint8_t>> bytes;
    size_t total = 0;
};

size_t writeRinex(const Content& content, tqx::Buffer& out)
{
    tqx::RecordDecoder decoder;
    const auto pass = [&](const tqx::ObservationGatherer::Receiver& receiver) {
        tqx::ObservationGatherer gatherer(receiver);
        content.forEach([&](const tqx::Block& block) {
            if (decoder.decode(block) > 0)
                gatherer.take(decoder.getDecoded());
        });
        gatherer.finish();
    };
    tqx::LogSurvey survey;
    pass([&](tqx::ObservationEpoch& epoch) {
        survey.take(epoch);
        return true;
    });
    survey.finish();
    tqx::ObservationFile file(survey, 0, {});
    out.clear();
    file.writeHeader(out);
    pass([&](tqx::ObservationEpoch& epoch) {
        file.write(out, epoch);
        return true;
    });
    return out.size();
}

size_t writeJson(const Content& content, tqx::Buffer& out)
{
    tqx::RecordDecoder decoder;
    const tqx::FieldFilter everything;
    tqx::RawJson json(everything);
    out.clear();
    content.forEach([&](const tqx::Block& block) {
        if (decoder.decode(block) > 0)
            json.write(out, decoder.getDecoded());
    });
    return out.size();
}

void besideJson(benchmark::State& state)
{
    static const Content content;
    tqx::Buffer out;
    const TimedWork rinex = {1, [&](int) { benchmark::DoNotOptimize(writeRinex(content, out)); }};
    const TimedWork json = {1, [&](int) { benchmark::DoNotOptimize(writeJson(content, out)); }};
    const std::vector<double> ns = runInTurns(state, {rinex, json});
    state.counters["log_MB/s"] = static_cast<double>(content.total) * 1e3 / ns[0];
    state.counters["json_log_MB/s"] = static_cast<double>(content.total) * 1e3 / ns[1];
    state.counters["of_its_rate"] = ns[1] / ns[0];
}

} // namespace

BENCHMARK(besideJson)->UseManualTime()->Iterations(turns);

BENCHMARK_MAIN();
