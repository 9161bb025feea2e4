// Columns of one type out of a mixed log in memory, in turns with its yardstick: TQX_decode of the
// same blocks, found in the same way, into one record that is used again and again. All batches of
// a turn are kept until its end, so that every column goes to fresh memory.

#include "RandomBlock.h"
#include "RecordGuard.h"
#include "TellingBlocks.h"
#include "Turns.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/table/TableBuilder.h"

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

    void add(const Bytes& block)
    {
        offsets.push_back(bytes.size());
        bytes.insert(bytes.end(), block.begin(), block.end());
    }

    std::vector<tqx::TableBlock> blocksOf(const TQX_TypeLayout& type) const
    {
        std::vector<tqx::TableBlock> blocks;
        for (const size_t offset : offsets) {
            const uint8_t* data = bytes.data() + offset;
            const tqx::TableBlock block = {
                data, static_cast<uint16_t>(data[6] | data[7] << 8U), 0, offset, {}};
            if (block.getNumber() == type.blockNumber)
                blocks.push_back(block);
        }
        return blocks;
    }

    Bytes bytes;
    std::vector<size_t> offsets;
};

using Blocks = std::vector<tqx::TableBlock>;

void decodeAll(const Blocks& blocks)
{
    AnyRecord record;
    TQX_Context_s context;
    TQX_init_context(&context);
    for (const tqx::TableBlock& block : blocks) {
        benchmark::DoNotOptimize(TQX_decode(&context, block.data, block.size, record.get()));
        TQX_release(record.get());
    }
}

void fillColumns(const std::shared_ptr<const tqx::TableSchema>& schema, const Blocks& blocks)
{
    std::vector<ArrowArray> batches;
    tqx::TableBuilder builder(schema);
    for (size_t taken = 0; taken < blocks.size();) {
        taken += builder.append(blocks.data() + taken, blocks.size() - taken);
        builder.finish(batches.emplace_back());
    }
    for (ArrowArray& batch : batches)
        batch.release(&batch);
}

void besideDecoding(benchmark::State& state, const MixedLog& log, const std::string& name,
                    const tqx::TableOptions& options)
{
    const TQX_TypeLayout& type = *tqx::findType(name);
    const Blocks blocks = log.blocksOf(type);
    const auto schema = std::make_shared<const tqx::TableSchema>(type, options);
    const std::vector<double> ns =
        runInTurns(state, {{1, [&](int) { fillColumns(schema, blocks); }},
                           {1, [&](int) { decodeAll(blocks); }}});
    const auto count = static_cast<double>(blocks.size());
    state.counters["columns"] = static_cast<double>(schema->getNames().size());
    state.counters["ns_per_block"] = ns[0] / count;
    state.counters["decode_ns_per_block"] = ns[1] / count;
    state.counters["of_decode_rate"] = ns[1] / ns[0];
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    const MixedLog log;
    const auto add = [&](const char* name, const char* type, const tqx::TableOptions& options) {
        benchmark::RegisterBenchmark(name,
                                     [&log, type, options](benchmark::State& state) {
                                         besideDecoding(state, log, type, options);
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
