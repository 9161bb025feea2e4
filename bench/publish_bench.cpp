// A stream from start to end: frame it, check it, decode it and publish messages to one receiver,
// which counts them. The yardstick, in turns with it, parses the same content into a new protobuf
// message each on the heap. Four positions to one epoch of measurements.

#include "SampleBlocks.h"
#include "Turns.h"
#include "yardstick.pb.h"

#include "TQXDecoder.h"
#include "TQXSynchronizer.h"
#include "TQX_FormatInfo.h"
#include "TQX_MeasEpoch2_Message.h"

#include <benchmark/benchmark.h>

#include <memory>

namespace
{

constexpr int rounds = 64; // of four positions and an epoch, in one turn
constexpr int turnCount = 501;
constexpr int positionsPerRound = 4;
constexpr int pieceSize = 4096;

/// The stream in pieces as a receiver sends them.
std::vector<QByteArray> streamInPieces()
{
    const std::vector<uint8_t> position = positionBlock();
    const std::vector<uint8_t> epoch = epochBlock();
    QByteArray stream;
    const auto append = [&stream](const std::vector<uint8_t>& block) {
        stream.append(reinterpret_cast<const char*>(block.data()), static_cast<int>(block.size()));
    };
    for (int round = 0; round < rounds; ++round) {
        for (int i = 0; i < positionsPerRound; ++i)
            append(position);
        append(epoch);
    }
    std::vector<QByteArray> pieces;
    for (int at = 0; at < stream.size(); at += pieceSize)
        pieces.push_back(stream.mid(at, pieceSize));
    return pieces;
}

void publishPiece(TQXSynchronizer& synchroniser, TQXDecoder& decoder, QByteArray piece)
{
    synchroniser.appendBytes(piece);
    while (synchroniser.hasBlock()) {
        const QByteArray block = synchroniser.getBlockBytes();
        decoder.decodeMessage(reinterpret_cast<const uint8_t*>(block.constData()),
                              static_cast<uint32_t>(block.size()));
    }
}

template<typename Content>
void parseOnHeap(const std::string& bytes)
{
    const auto content = std::make_unique<Content>();
    benchmark::DoNotOptimize(content->ParseFromArray(bytes.data(), static_cast<int>(bytes.size())));
}

void publish(benchmark::State& state)
{
    TQX_FormatInfo::getInstance();
    const std::vector<QByteArray> pieces = streamInPieces();
    const std::string position = positionAsProtobuf();
    const std::string epoch = epochAsProtobuf();
    TQXDecoder decoder;
    TQXSynchronizer synchroniser;
    int messages = 0;
    QObject::connect(&decoder, &TQXDecoder::newMessage, [&messages] { ++messages; });

    const std::vector<double> ns =
        runInTurns(state, {{1,
                            [&](int) {
                                for (const QByteArray& piece : pieces)
                                    publishPiece(synchroniser, decoder, piece);
                            }},
                           {1, [&](int) {
                                for (int round = 0; round < rounds; ++round) {
                                    for (int i = 0; i < positionsPerRound; ++i)
                                        parseOnHeap<yardstick::PVTGeodetic2>(position);
                                    parseOnHeap<yardstick::MeasEpoch2>(epoch);
                                }
                            }}});
    if (messages != static_cast<int>(state.iterations()) * rounds * (positionsPerRound + 1))
        state.SkipWithError("not every block was published");
    state.counters["ns_a_round"] = ns[0] / rounds;
    state.counters["protobuf_ns"] = ns[1] / rounds;
    state.counters["of_protobuf"] = ns[0] / ns[1];
}
BENCHMARK(publish)->UseManualTime()->Iterations(turnCount);

} // namespace

BENCHMARK_MAIN();
