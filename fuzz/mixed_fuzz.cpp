// Any bytes in any pieces through the stream of blocks: blocks, neighbours and damage are all the
// bytes of the input, in order, every neighbour is well-formed, and pieces do not matter.

#include "FixedChecksums.h"
#include "tqx/log/stream/BlockStream.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace
{

using namespace tqx;

void require(bool condition)
{
    if (!condition)
        std::abort();
}

uint32_t crc24(const uint8_t* bytes, size_t size)
{
    uint32_t crc = 0;
    for (size_t i = 0; i < size * 8; ++i) {
        const uint32_t bit = bytes[i / 8] >> (7 - i % 8) & 1U;
        crc = (crc << 1U & 0xffffffU) ^ (((crc >> 23U) ^ bit) != 0 ? 0x864cfbU : 0U);
    }
    return crc;
}

uint8_t sentenceSum(const uint8_t* from, const uint8_t* to)
{
    uint8_t sum = 0;
    for (; from != to; ++from)
        sum = static_cast<uint8_t>(sum ^ *from);
    return sum;
}

/// Corrects the checksums of frames and sentences preceded by "FIX".
void fixNeighbours(std::vector<uint8_t>& stream)
{
    for (size_t at = 0; at + 9 <= stream.size(); ++at) {
        if (!std::equal(&stream[at], &stream[at] + 3, "FIX"))
            continue;
        uint8_t* const start = &stream[at] + 3;
        uint8_t* const last = stream.data() + stream.size();
        const size_t frame = 3 + (start[1] & 3U) * size_t{256} + start[2];
        if (start[0] == 0xd3 && frame + 3 <= static_cast<size_t>(last - start)) {
            const uint32_t crc = crc24(start, frame);
            for (unsigned i = 0; i < 3; ++i)
                start[frame + i] = static_cast<uint8_t>(crc >> (16 - 8 * i));
        }
        uint8_t* const end = std::find(start, last, '*');
        if ((start[0] == '$' || start[0] == '!') && last - end >= 3) {
            const uint8_t sum = sentenceSum(start + 1, end);
            end[1] = static_cast<uint8_t>("0123456789ABCDEF"[sum >> 4U]);
            end[2] = static_cast<uint8_t>("0123456789abcdef"[sum & 15U]);
        }
    }
}

class Source : public ByteSource
{
public:
    Source(const std::vector<uint8_t>& content, size_t size) : m_bytes(content), m_piece(size) {}

    size_t read(uint8_t* to, size_t capacity) override
    {
        const size_t size = std::min({m_bytes.size() - m_at, capacity, m_piece});
        std::copy_n(m_bytes.data() + m_at, size, to);
        m_at += size;
        return size;
    }
    Place placeOf(uint64_t offset) const override
    {
        require(offset < m_at);
        return {m_name, offset};
    }

private:
    const std::vector<uint8_t>& m_bytes;
    size_t m_piece;
    size_t m_at = 0;
    std::string m_name;
};

/// The result of a stream: offset, size and kind of each part.
class Parts : public StreamListener
{
public:
    Parts(const std::vector<uint8_t>& content, size_t piece) : m_bytes(content)
    {
        Source source(m_bytes, piece);
        BlockStream stream(source, this);
        Block block = {};
        while (stream.next(block))
            add(block.offset, block.size, 'B');
        const StreamCounts& counts = stream.getCounts();
        require(m_end == m_bytes.size() && counts.bytes == m_end);
        require(counts.isDamaged() == (counts.droppedBytes != 0));
        require(counts.crcErrors == m_crcErrors && counts.invalidLengths == m_invalidLengths);
    }

    void onGap(const StreamGap& gap) override
    {
        require(!m_isGap);
        add(gap.offset, gap.bytes, '-');
        m_isGap = true;
        m_crcErrors += gap.crcErrors;
        m_invalidLengths += gap.invalidLengths;
    }
    void onNeighbour(const std::string&, const Neighbour& found) override
    {
        require(std::equal(found.data, found.data + found.size, m_bytes.data() + found.offset));
        const uint8_t* const last = found.data + found.size;
        switch (found.kind) {
        case NeighbourKind::Nmea:
            require(found.getAddress().size() >= 3 && last[-5] == '*');
            require(std::stoul(std::string(last - 4, last - 2), nullptr, 16) ==
                    sentenceSum(found.data + 1, last - 5));
            break;
        case NeighbourKind::Rtcm3:
            require(crc24(found.data, found.size) == 0);
            require(found.data[0] == 0xd3 &&
                    found.size == 6 + found.data[1] * size_t{256} + found.data[2]);
            break;
        case NeighbourKind::Ascii:
            require(last[-1] == '\n' || last[-1] == '>');
            require(std::all_of(found.data, last, [](uint8_t byte) { return byte < 0x7f; }));
            break;
        }
        add(found.offset, found.size, "NRA"[static_cast<size_t>(found.kind)]);
    }
    void onUndecodable(const std::string&, const Block&, int32_t) override {}

    std::vector<std::tuple<uint64_t, uint64_t, char>> parts;

private:
    void add(uint64_t offset, uint64_t size, char kind)
    {
        require(size != 0 && offset == m_end);
        m_end += size;
        m_isGap = false;
        parts.emplace_back(offset, size, kind);
    }

    const std::vector<uint8_t>& m_bytes;
    uint64_t m_end = 0;
    uint64_t m_crcErrors = 0;
    uint64_t m_invalidLengths = 0;
    bool m_isGap = false; ///< whether the last part is one
};

} // namespace

// The first byte chooses the size of the pieces.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    std::vector<uint8_t> stream = withChecksums(data + 1, size - 1);
    fixNeighbours(stream);
    const Parts whole(stream, size);
    require(Parts(stream, data[0] + size_t{1}).parts == whole.parts);
    return 0;
}
