// Decoding of blocks in turns with its yardsticks: a memcpy of the same bytes, the refusal of the
// type while it is switched off and, for the two sample blocks, the parse of the same content into
// a reused protobuf message. The release of sub-block arrays is included, as a user of records
// would do it. Blocks other than those are random but well-formed.

#include "FieldRoles.h"
#include "RandomBlock.h"
#include "RecordGuard.h"
#include "SampleBlocks.h"
#include "TQX_Format.h"
#include "Turns.h"
#include "korcg_load.h"
#include "yardstick.pb.h"

#include <benchmark/benchmark.h>

#include <string>

namespace
{

using namespace Kor::MessageApi;

using Bytes = std::vector<uint8_t>;

constexpr int callsInTurn = 512;
constexpr int turnCount = 201;

TimedWork decoding(AnyRecord& record, TQX_Context_s& context, const Bytes& block)
{
    return {callsInTurn, [&](int calls) {
                for (; calls > 0; --calls) {
                    benchmark::DoNotOptimize(TQX_decode(
                        &context, block.data(), static_cast<uint16_t>(block.size()), record.get()));
                    TQX_release(record.get());
                }
            }};
}

TimedWork refusing(AnyRecord& record, TQX_Context_s& context, const Bytes& block)
{
    return {callsInTurn, [&](int calls) {
                for (; calls > 0; --calls)
                    benchmark::DoNotOptimize(TQX_decode(
                        &context, block.data(), static_cast<uint16_t>(block.size()), record.get()));
            }};
}

TimedWork copying(Bytes& target, const Bytes& block)
{
    return {callsInTurn, [&](int calls) {
                for (; calls > 0; --calls) {
                    std::memcpy(target.data(), block.data(), block.size());
                    benchmark::DoNotOptimize(target.data());
                    benchmark::ClobberMemory();
                }
            }};
}

template<typename Content>
TimedWork parsing(Content& content, const std::string& bytes)
{
    return {callsInTurn, [&](int calls) {
                for (; calls > 0; --calls)
                    benchmark::DoNotOptimize(
                        content.ParseFromArray(bytes.data(), static_cast<int>(bytes.size())));
            }};
}

class Measurement
{
public:
    explicit Measurement(const Bytes& block)
        : m_block(block), m_target(block.size()),
          m_recordType(TQX_recordType(TQX_blockNumberOf(korcg_load_u16(&block[4]))))
    {
        TQX_init_context(&m_enabled);
        m_disabled = m_enabled;
        TQX_enable(m_disabled, m_recordType, false);
    }

    void run(benchmark::State& state, const std::vector<TimedWork>& yardsticks = {})
    {
        std::vector<TimedWork> works = {decoding(m_record, m_enabled, m_block),
                                        refusing(m_refused, m_disabled, m_block),
                                        copying(m_target, m_block)};
        works.insert(works.end(), yardsticks.begin(), yardsticks.end());
        const std::vector<double> ns = runInTurns(state, works);
        state.counters["ns"] = ns[0];
        state.counters["disabled_ns"] = ns[1];
        state.counters["disabled_of_decode"] = ns[1] / ns[0];
        state.counters["memcpy_ns"] = ns[2];
        if (ns.size() > 3) {
            state.counters["protobuf_ns"] = ns[3];
            state.counters["of_protobuf"] = ns[0] / ns[3];
        }
    }

private:
    const Bytes& m_block;
    Bytes m_target;
    uint32_t m_recordType;
    AnyRecord m_record;
    AnyRecord m_refused;
    TQX_Context_s m_enabled;
    TQX_Context_s m_disabled;
};

void randomContent(benchmark::State& state, const Bytes& block)
{
    Measurement(block).run(state);
}

template<typename Content>
void besideProtobuf(benchmark::State& state, const Bytes& block, const std::string& bytes)
{
    Content content;
    Measurement(block).run(state, {parsing(content, bytes)});
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    benchmark::RegisterBenchmark("sample/PVTGeodetic2", besideProtobuf<yardstick::PVTGeodetic2>,
                                 positionBlock(), positionAsProtobuf())
        ->UseManualTime()
        ->Iterations(turnCount);
    benchmark::RegisterBenchmark("sample/MeasEpoch2", besideProtobuf<yardstick::MeasEpoch2>,
                                 epochBlock(), epochAsProtobuf())
        ->UseManualTime()
        ->Iterations(turnCount);
    std::mt19937_64 random(7);
    for (const TQX_TypeLayout* type : mainTypes())
        benchmark::RegisterBenchmark(type->name, randomContent,
                                     randomBlock(*type, {type->highestRevision, 20, 0}, random))
            ->UseManualTime()
            ->Iterations(turnCount);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
