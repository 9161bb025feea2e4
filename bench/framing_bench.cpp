// Framing beside its yardsticks: the checksum alone, memcpy of the same bytes.

#include "TqxSync.h"
#include "korcg_crc.h"
#include "korcg_load.h"
#include "tqx/framing/BlockFramer.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <random>
#include <vector>

namespace
{

using Bytes = std::vector<uint8_t>;

constexpr size_t streamSize = 8 << 20;
constexpr size_t usualPiece = 64 << 10;

void appendBlock(Bytes& stream, size_t size, std::mt19937& random)
{
    const size_t at = stream.size();
    stream.resize(at + size);
    uint8_t* block = stream.data() + at;
    for (size_t i = 8; i < size; ++i) {
        block[i] = static_cast<uint8_t>(random());
    }
    std::memcpy(block, "$@", 2);
    korcg_store_u16(block + 4, 4007);
    korcg_store_u16(block + 6, static_cast<uint16_t>(size));
    korcg_store_u16(block + 2, korcg_crc16_bytes(block + 4, size - 4));
}

Bytes wellFormedStream(size_t blockSize)
{
    std::mt19937 random(1);
    Bytes stream;
    while (stream.size() < streamSize) {
        appendBlock(stream, blockSize, random);
    }
    return stream;
}

// A false header every `period` bytes, each claiming the longest block.
Bytes hostileStream(size_t period)
{
    Bytes stream(streamSize, 0xff);
    for (size_t at = 0; at + 8 <= stream.size(); at += period) {
        std::memcpy(&stream[at], "$@", 2);
    }
    return stream;
}

Bytes noise()
{
    std::mt19937 random(2);
    Bytes stream(streamSize);
    for (uint8_t& byte : stream) {
        byte = static_cast<uint8_t>(random());
    }
    return stream;
}

void finish(benchmark::State& state, const Bytes& stream)
{
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * stream.size()));
}

void frame(benchmark::State& state, const Bytes& stream, size_t piece)
{
    for (auto _ : state) {
        tqx::BlockFramer framer;
        size_t taken = 0;
        for (size_t at = 0; at < stream.size(); at += piece) {
            framer.append(stream.data() + at, std::min(piece, stream.size() - at));
            while (framer.hasBlock()) {
                taken += framer.block().size;
                framer.takeBlock();
            }
        }
        benchmark::DoNotOptimize(taken);
    }
    finish(state, stream);
}

void wellFormed(benchmark::State& state)
{
    frame(state, wellFormedStream(static_cast<size_t>(state.range(0))), usualPiece);
}
BENCHMARK(wellFormed)->Arg(100)->Arg(500)->Arg(2000)->Arg(60000);

// Yardstick of wellFormed: the checksum of the same blocks, nothing else.
void checksumAlone(benchmark::State& state)
{
    const auto blockSize = static_cast<size_t>(state.range(0));
    const Bytes stream = wellFormedStream(blockSize);
    for (auto _ : state) {
        unsigned wrong = 0;
        for (size_t at = 0; at < stream.size(); at += blockSize) {
            const uint8_t* block = stream.data() + at;
            wrong += korcg_crc16_bytes(block + 4, blockSize - 4) != korcg_load_u16(block + 2);
        }
        benchmark::DoNotOptimize(wrong);
    }
    finish(state, stream);
}
BENCHMARK(checksumAlone)->Arg(100)->Arg(500)->Arg(2000)->Arg(60000);

void throughTqxSync(benchmark::State& state)
{
    const Bytes stream = wellFormedStream(static_cast<size_t>(state.range(0)));
    std::vector<QByteArray> pieces;
    for (size_t at = 0; at < stream.size(); at += usualPiece) {
        pieces.emplace_back(reinterpret_cast<const char*>(&stream[at]),
                            static_cast<int>(std::min(usualPiece, stream.size() - at)));
    }
    for (auto _ : state) {
        TqxSync sync;
        for (const QByteArray& piece : pieces) {
            sync.appendBytes(piece);
            while (sync.hasBlock()) {
                benchmark::DoNotOptimize(sync.getBlockBytes());
            }
        }
    }
    finish(state, stream);
}
BENCHMARK(throughTqxSync)->Arg(500);

void pieceSize(benchmark::State& state)
{
    frame(state, wellFormedStream(500), static_cast<size_t>(state.range(0)));
}
BENCHMARK(pieceSize)->Arg(1)->Arg(16)->Arg(1 << 10)->Arg(64 << 10)->Arg(1 << 20);

void hostile(benchmark::State& state)
{
    frame(state, hostileStream(static_cast<size_t>(state.range(0))),
          static_cast<size_t>(state.range(1)));
}
BENCHMARK(hostile)->Args({8, usualPiece})->Args({8, 1})->Args({8, 1 << 20})->Args({24, usualPiece});

// Nothing but syncs: a candidate every two bytes.
void onlySyncs(benchmark::State& state)
{
    Bytes stream(streamSize, '$');
    for (size_t at = 1; at < stream.size(); at += 2) {
        stream[at] = '@';
    }
    frame(state, stream, usualPiece);
}
BENCHMARK(onlySyncs);

void garbageOfNoise(benchmark::State& state)
{
    frame(state, noise(), usualPiece);
}
BENCHMARK(garbageOfNoise);

void garbageOfFirstSyncs(benchmark::State& state)
{
    frame(state, Bytes(streamSize, '$'), usualPiece);
}
BENCHMARK(garbageOfFirstSyncs);

// Yardstick of the garbage.
void copyAlone(benchmark::State& state)
{
    const Bytes stream = noise();
    Bytes copy(usualPiece);
    for (auto _ : state) {
        for (size_t at = 0; at < stream.size(); at += usualPiece) {
            std::memcpy(copy.data(), stream.data() + at, usualPiece);
            benchmark::DoNotOptimize(copy.data());
            benchmark::ClobberMemory();
        }
    }
    finish(state, stream);
}
BENCHMARK(copyAlone);

} // namespace

BENCHMARK_MAIN();
