// scan_bytes FILE
//
// Says what a file without blocks seems to be, and finds the sentences, frames and lines in it.

#include "tqx/log/DataError.h"
#include "tqx/log/mixed/Crc24.h"
#include "tqx/log/mixed/NeighbourScanner.h"
#include "tqx/log/source/OpenSource.h"
#include "tqx/log/stream/ContentGuess.h"

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace
{

class Finds : public tqx::NeighbourScanner::Listener
{
public:
    void onRecognised(const tqx::Neighbour& neighbour) override
    {
        std::printf("%6llu  ", static_cast<unsigned long long>(neighbour.offset));
        switch (neighbour.kind) {
        case tqx::NeighbourKind::Nmea:
            std::printf("sentence %s\n", std::string(neighbour.getAddress()).c_str());
            break;
        case tqx::NeighbourKind::Rtcm3:
            // Its checksum is correct, or it would not be a frame.
            std::printf("frame %u, checksum %s\n", neighbour.getNumber(),
                        tqx::Crc24().holds(0, neighbour.data, neighbour.size) ? "right" : "wrong");
            break;
        case tqx::NeighbourKind::Ascii:
            std::printf("text of %zu bytes\n", neighbour.size);
            break;
        }
    }
    void onDamage(uint64_t offset, uint64_t count) override
    {
        std::printf("%6llu  %llu other bytes\n", static_cast<unsigned long long>(offset),
                    static_cast<unsigned long long>(count));
    }
};

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return 1;
    try {
        const std::unique_ptr<tqx::ByteSource> source = tqx::openSource(argv[1]);
        Finds finds;
        tqx::NeighbourScanner scanner(finds);
        std::vector<uint8_t> piece(4096);
        uint64_t offset = 0;
        while (const size_t size = source->read(piece.data(), piece.size())) {
            if (offset == 0) {
                std::printf("%s\n", tqx::describeContent(tqx::guessContent(piece.data(), size)));
            }
            scanner.append(offset, piece.data(), size);
            offset += size;
        }
        scanner.end();
    } catch (const tqx::DataError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
