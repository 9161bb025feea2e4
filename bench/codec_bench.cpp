// Decoding of blocks beside a memcpy of the same bytes. Random but well-formed blocks; the release
// of sub-block arrays is included, as a receiver of records would do it.

#include "RandomBlock.h"
#include "RecordGuard.h"

#include <benchmark/benchmark.h>

#include <string>

namespace
{

using namespace Kor::MessageApi;

void setBytes(benchmark::State& state, size_t size)
{
    state.SetBytesProcessed(static_cast<int64_t>(size) * static_cast<int64_t>(state.iterations()));
}

void decode(benchmark::State& state, const std::vector<uint8_t>& block)
{
    AnyRecord record;
    TQX_Context_s context;
    TQX_init_context(&context);
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            TQX_decode(&context, block.data(), static_cast<uint16_t>(block.size()), record.get()));
        TQX_release(record.get());
    }
    setBytes(state, block.size());
}

void refuse(benchmark::State& state, const std::vector<uint8_t>& block, uint32_t recordType)
{
    AnyRecord record;
    TQX_Context_s context;
    TQX_init_context(&context);
    context.enableMask[TQX_enableByte(recordType)] &=
        static_cast<uint8_t>(~TQX_enableBit(recordType));
    for (auto _ : state)
        benchmark::DoNotOptimize(
            TQX_decode(&context, block.data(), static_cast<uint16_t>(block.size()), record.get()));
    setBytes(state, block.size());
}

void copy(benchmark::State& state, const std::vector<uint8_t>& block)
{
    std::vector<uint8_t> target(block.size());
    for (auto _ : state) {
        std::memcpy(target.data(), block.data(), block.size());
        benchmark::DoNotOptimize(target.data());
        benchmark::ClobberMemory();
    }
    setBytes(state, block.size());
}

// A measurement epoch with 40 signals and two further signals each.
std::vector<uint8_t> largeEpoch()
{
    constexpr unsigned size = 20 + 40 * (20 + 2 * 12);
    std::mt19937_64 random(1);
    std::vector<uint8_t> block(size);
    for (uint8_t& byte : block)
        byte = static_cast<uint8_t>(random());
    const uint8_t head[] = {'$', '@', 0, 0, 0xbb, 0x0f, size & 0xff, size >> 8};
    std::copy(std::begin(head), std::end(head), block.begin());
    block[14] = 40;
    block[15] = 20;
    block[16] = 12;
    for (unsigned i = 0; i < 40; ++i)
        block[20 + i * 44 + 19] = 2;
    return block;
}

void add(const std::string& name, const std::vector<uint8_t>& block, uint32_t recordType)
{
    benchmark::RegisterBenchmark((name + "/decode").c_str(), decode, block);
    benchmark::RegisterBenchmark((name + "/memcpy").c_str(), copy, block);
    benchmark::RegisterBenchmark((name + "/disabled").c_str(), refuse, block, recordType);
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    std::mt19937_64 random(7);
    for (const TQX_TypeLayout* type : mainTypes())
        add(type->name, randomBlock(*type, {type->highestRevision, 20, 0}, random),
            type->recordType);
    add("MeasEpoch2_40x2", largeEpoch(), 371);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
