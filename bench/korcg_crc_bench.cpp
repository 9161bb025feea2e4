// Checksum of a block beside two yardsticks that run in turns with it: a 64-bit sum over the same
// bytes, and the checksum by one table. Each row times 512 calls of one method; its counters are
// medians: nanoseconds per call, and the speed relative to the yardsticks.

#include "Turns.h"
#include "korcg_crc.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace
{

constexpr int turnCount = 2000;
constexpr int callsInTurn = 512;
constexpr int tableCallsPerTurn = 16; // it takes a hundred times as long
constexpr size_t blockSizes = 8;

using Function = uint16_t (*)(const uint8_t*, size_t, uint16_t);

#if defined(__GNUC__)
__attribute__((noinline))
#endif
uint16_t
sum64(const uint8_t* data, size_t size, uint16_t start)
{
    uint64_t sum = start;
    for (; size >= 8; data += 8, size -= 8) {
        uint64_t word;
        std::memcpy(&word, data, sizeof word);
        sum += word;
    }
    for (; size > 0; ++data, --size) {
        sum += *data;
    }
    return static_cast<uint16_t>(sum);
}

/// Blocks of one size at different alignments, in the first-level cache.
class Blocks
{
public:
    explicit Blocks(size_t size) : m_size(size), m_bytes(blockSizes * (size + 5))
    {
        std::mt19937 random(4007);
        for (uint8_t& byte : m_bytes) {
            byte = static_cast<uint8_t>(random());
        }
    }

    TimedWork calling(Function method, int callsPerTurn) const
    {
        return {callsPerTurn, [this, method](int calls) {
                    for (int i = 0; i < calls; ++i) {
                        const size_t block = static_cast<size_t>(i) % blockSizes;
                        benchmark::DoNotOptimize(
                            method(m_bytes.data() + block * (m_size + 5), m_size, 0));
                    }
                }};
    }

private:
    size_t m_size;
    std::vector<uint8_t> m_bytes;
};

void measure(benchmark::State& state, Function method, Function byteTable)
{
    const Blocks blocks(static_cast<size_t>(state.range(0)));
    const std::vector<double> ns =
        runInTurns(state, {blocks.calling(method, callsInTurn), blocks.calling(sum64, callsInTurn),
                           blocks.calling(byteTable, tableCallsPerTurn)});
    state.counters["ns"] = ns[0];
    state.counters["of_sum64"] = ns[1] / ns[0];
    state.counters["of_byte_table"] = ns[2] / ns[0];
}

void combine(benchmark::State& state)
{
    uint16_t crc = 1;
    size_t length = 0;
    for (auto _ : state) {
        crc = korcg_crc16_combine(crc, 0x1d0f, length);
        length = (length + 4099) & 0xffff;
        benchmark::DoNotOptimize(crc);
    }
}

} // namespace

int main(int argc, char** argv)
{
    const korcg_CrcMethod_s* methods;
    const size_t count = korcg_crc16_methods(&methods);
    const auto add = [&](const char* name, Function method) {
        benchmark::RegisterBenchmark(name, measure, method, methods[0].run)
            ->Arg(20)
            ->Arg(100)
            ->Arg(500)
            ->Arg(2000)
            ->Arg(20000)
            ->UseManualTime()
            ->Iterations(turnCount);
    };
    for (size_t i = 0; i < count; ++i) {
        add(methods[i].name, methods[i].run);
    }
    add("korcg_crc16_bytes", korcg_crc16_bytes);
    benchmark::RegisterBenchmark("korcg_crc16_combine", combine);

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
