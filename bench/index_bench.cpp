// The index of a log beside its yardstick: reading the same file in pieces of 1 MB and adding it up
// as 64-bit words. On one and on two threads, in turns. The file is made once and stays in the
// system's cache.
//
//     index_bench [GIGABYTES [FOLDER]] [benchmark options]

#include "Turns.h"
#include "korcg_crc.h"
#include "korcg_load.h"
#include "tqx/log/index/Index.h"
#include "tqx/log/index/IndexedBlocks.h"
#include "tqx/log/source/FileAccess.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace
{

using Bytes = std::vector<uint8_t>;

std::string path;

void appendBlock(Bytes& log, uint16_t number, size_t size, uint32_t tow, std::mt19937& random)
{
    const size_t at = log.size();
    log.resize(at + size);
    uint8_t* block = log.data() + at;
    for (size_t i = 14; i < size; ++i)
        block[i] = static_cast<uint8_t>(random());
    std::memcpy(block, "$@", 2);
    korcg_store_u16(block + 4, number);
    korcg_store_u16(block + 6, static_cast<uint16_t>(size));
    korcg_store_u32(block + 8, tow);
    korcg_store_u16(block + 12, 2300);
    korcg_store_u16(block + 2, korcg_crc16_bytes(block + 4, size - 4));
}

/// Epochs of 20 types, from status blocks of 32 bytes to measurements of 2,000, 320 bytes on
/// average; occasionally some junk. Some megabytes are repeated.
void makeLog(uint64_t size)
{
    std::mt19937 random(1);
    Bytes log;
    for (uint32_t epoch = 0; log.size() < (32U << 20); ++epoch) {
        for (uint16_t type = 0; type < 20; ++type) {
            const size_t body = type == 0 ? 1800 + random() % 400 : 32 + type * 24U;
            appendBlock(log, static_cast<uint16_t>(4000 + type), body & ~size_t{3}, epoch * 100,
                        random);
        }
        if (epoch % 100 == 0)
            log.insert(log.end(), 37, 'x');
    }
    std::ofstream file(path, std::ios::binary);
    for (uint64_t written = 0; written < size; written += log.size())
        file.write(reinterpret_cast<const char*>(log.data()),
                   static_cast<std::streamsize>(log.size()));
    if (!file) {
        std::perror(path.c_str());
        std::exit(1);
    }
}

uint64_t sumOf(const tqx::RandomAccess& file, uint64_t begin, uint64_t end)
{
    constexpr size_t pieceSize = 1 << 20;
    Bytes piece(pieceSize);
    uint64_t sum = 0;
    for (uint64_t at = begin; at < end; at += pieceSize) {
        const size_t got = file.readAt(at, piece.data(), pieceSize);
        for (size_t i = 0; i + 8 <= got; i += 8)
            sum += korcg_load_u64(&piece[i]);
    }
    return sum;
}

void readAndSum(const tqx::RandomAccess& file, unsigned threads)
{
    const uint64_t half = (file.getSize() / threads) & ~uint64_t{0xfffff};
    std::vector<uint64_t> sums(threads);
    std::vector<std::thread> others;
    for (unsigned i = 1; i < threads; ++i)
        others.emplace_back([&, i] {
            sums[i] = sumOf(file, half * i, i + 1 == threads ? file.getSize() : half * (i + 1));
        });
    sums[0] = sumOf(file, 0, threads == 1 ? file.getSize() : half);
    for (std::thread& other : others)
        other.join();
    for (uint64_t sum : sums)
        benchmark::DoNotOptimize(sum);
}

// Counters: the rate of the index relative to the yardstick, and the gain from a second thread
// relative to the yardstick's.
void index(benchmark::State& state, tqx::FileAccess::Mapping mapping)
{
    const tqx::FileAccess plain(path, tqx::FileAccess::Mapping::Never);
    const auto build = [&](unsigned threads) {
        // Opened anew, because mapping a file is part of the work.
        const tqx::FileAccess file(path, mapping);
        const tqx::Index made = tqx::Index::build(file, {threads});
        benchmark::DoNotOptimize(made.getPageCount());
    };
    const std::vector<double> medians =
        runInTurns(state, {{1, [&](int) { build(1); }},
                           {1, [&](int) { build(2); }},
                           {1, [&](int) { readAndSum(plain, 1); }},
                           {1, [&](int) { readAndSum(plain, 2); }}});
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * plain.getSize()));
    state.counters["of_yardstick"] = medians[2] / medians[0];
    const double gain = medians[0] / medians[1];
    const double yardstickGain = medians[2] / medians[3];
    state.counters["gain"] = gain;
    state.counters["yardstick_gain"] = yardstickGain;
    state.counters["of_gain"] = gain / yardstickGain;
}
BENCHMARK_CAPTURE(index, mapped, tqx::FileAccess::Mapping::IfPossible)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->MinTime(3);
BENCHMARK_CAPTURE(index, inPieces, tqx::FileAccess::Mapping::Never)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->MinTime(3);

// The blocks of one type, found by the index.
void oneType(benchmark::State& state)
{
    const tqx::FileAccess file(path);
    const tqx::Index made = tqx::Index::build(file);
    for (auto _ : state) {
        tqx::IndexedBlocks blocks(made, file, {{4007}});
        uint64_t count = 0;
        for (tqx::Block block = {}; blocks.next(block);)
            count += block.getRevision() + 1;
        benchmark::DoNotOptimize(count);
    }
    state.counters["blocks"] = static_cast<double>(made.getCount(4007));
}
BENCHMARK(oneType)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    const double gigabytes = argc > 1 ? std::strtod(argv[1], nullptr) : 1;
    const std::filesystem::path folder =
        argc > 2 ? std::filesystem::path(argv[2]) : std::filesystem::temp_directory_path();
    path = (folder / "index_bench.tqx").string();
    makeLog(static_cast<uint64_t>(gigabytes * 1e9));
    benchmark::RunSpecifiedBenchmarks();
    std::filesystem::remove(path);
}
