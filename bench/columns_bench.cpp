// Columns of one type out of a mixed log in memory by its index, in turns with its yardstick:
// TQX_decode of the same blocks, also found by the index, into one reused record. All batches of a
// turn are kept until its end, so that every column goes to fresh memory.

#include "RandomBlock.h"
#include "RecordGuard.h"
#include "SampleBlocks.h"
#include "Turns.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/table/IndexInput.h"
#include "tqx/log/table/TableStream.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

namespace
{

using namespace Kor::MessageApi;

constexpr int turns = 15;
constexpr size_t epochs = 40000;

using Bytes = std::vector<uint8_t>;

/// A log of epochs, each with measurements, two solutions and a status.
struct MixedLog {
    MixedLog()
    {
        std::mt19937_64 random(11);
        const Bytes measurements = epochBlock();
        for (size_t epoch = 0; epoch < epochs; ++epoch) {
            add(measurements);
            for (const char* name : {"PVTGeodetic2", "PVTCartesian2", "ReceiverStatus2"}) {
                const TQX_TypeLayout& type = *tqx::findType(name);
                add(randomBlock(type, {type.highestRevision, 4, 0}, random));
            }
        }
    }

    void add(const Bytes& block) { bytes.insert(bytes.end(), block.begin(), block.end()); }

    Bytes bytes;
};

/// What to read: the blocks of one type.
struct Wanted {
    const tqx::Index& index;
    const tqx::MemoryAccess& log;
    const TQX_TypeLayout& type;
};

void decodeAll(const Wanted& wanted)
{
    AnyRecord record;
    TQX_Context_s context;
    TQX_init_context(&context);
    tqx::IndexedBlocks blocks(wanted.index, wanted.log, {{wanted.type.blockNumber}});
    for (tqx::Block block; blocks.next(block);) {
        benchmark::DoNotOptimize(TQX_decode(&context, block.data, block.size, record.get()));
        TQX_release(record.get());
    }
}

void fillColumns(const Wanted& wanted, const std::shared_ptr<const tqx::TableSchema>& schema)
{
    std::vector<ArrowArray> batches;
    tqx::TableStream table(
        schema, std::make_unique<tqx::IndexInput>(wanted.index, wanted.log, wanted.type));
    for (ArrowArray batch; table.next(batch);)
        batches.push_back(batch);
    for (ArrowArray& batch : batches)
        batch.release(&batch);
}

void besideDecoding(benchmark::State& state, const tqx::Index& index, const tqx::MemoryAccess& log,
                    const std::string& name, const tqx::TableOptions& options)
{
    const TQX_TypeLayout& type = *tqx::findType(name);
    const Wanted wanted = {index, log, type};
    const auto schema = std::make_shared<const tqx::TableSchema>(type, options);
    const std::vector<double> ns =
        runInTurns(state, {{1, [&](int) { fillColumns(wanted, schema); }},
                           {1, [&](int) { decodeAll(wanted); }}});
    const auto count = static_cast<double>(index.getCount(type.blockNumber));
    state.counters["columns"] = static_cast<double>(schema->getNames().size());
    state.counters["ns_per_block"] = ns[0] / count;
    state.counters["decode_ns_per_block"] = ns[1] / count;
    state.counters["of_decode_rate"] = ns[1] / ns[0];
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    const MixedLog content;
    const tqx::MemoryAccess log(content.bytes.data(), content.bytes.size());
    const tqx::Index index = tqx::Index::build(log);
    const auto add = [&](const char* name, const char* type, const tqx::TableOptions& options) {
        benchmark::RegisterBenchmark(name,
                                     [&index, &log, type, options](benchmark::State& state) {
                                         besideDecoding(state, index, log, type, options);
                                     })
            ->UseManualTime()
            ->Iterations(turns);
    };
    tqx::TableOptions stored;
    stored.isScaled = false;
    stored.isNamed = false;
    stored.hidesDoNotUse = false;
    tqx::TableOptions second;
    second.rows = "Type1.Type2";
    tqx::TableOptions heights;
    heights.fields = tqx::FieldFilter({"Height"});
    add("position", "PVTGeodetic2", {});
    add("position/stored", "PVTGeodetic2", stored);
    add("position/one_column", "PVTGeodetic2", heights);
    add("measurements", "MeasEpoch2", {});
    add("measurements/second_signals", "MeasEpoch2", second);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
