// Any bytes in any pieces: the accounting holds, every block is whole and intact, pieces do not
// matter unless waiting candidates are doubted, nothing is left after the end of input.

#include "FixedChecksums.h"
#include "tqx/framing/BlockFramer.h"

#include <algorithm>
#include <cstdlib>
#include <utility>
#include <vector>

namespace
{

void require(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

class Checked : private tqx::BlockFramer::Listener
{
public:
    void append(const uint8_t* bytes, size_t size)
    {
        m_appended += size;
        m_framer.append(bytes, size);
        takeBlocks();
    }

    void passWaiting()
    {
        while (m_framer.passWaiting()) {
            takeBlocks();
        }
    }

    void flush()
    {
        m_framer.flush();
        takeBlocks();
        require(m_framer.bytesLeft() == 0);
    }

    // Offset and size of every block.
    const std::vector<std::pair<uint64_t, size_t>>& blocks() const { return m_blocks; }

private:
    void takeBlocks()
    {
        account();
        while (m_framer.hasBlock()) {
            const tqx::BlockFramer::Block block = m_framer.block();
            require(block.size >= 8 && block.data[0] == '$' && block.data[1] == '@');
            require(korcg_load_u16(block.data + 6) == block.size);
            require(korcg_load_u16(block.data + 2) ==
                    korcg_crc16_bytes(block.data + 4, block.size - 4));
            m_blocks.emplace_back(block.offset, block.size);
            m_taken += block.size;
            m_framer.takeBlock();
            account();
        }
    }

    void account() const { require(m_taken + m_dropped + m_framer.bytesLeft() == m_appended); }

    void onChecksumFailed(uint64_t offset) override { require(offset < m_appended); }
    void onInvalidLength(uint64_t offset) override { require(offset < m_appended); }
    void onDroppedPiece(uint64_t offset, const uint8_t*, size_t size) override
    {
        require(size != 0 && offset == m_taken + m_dropped + m_handedOver);
        m_handedOver += size;
    }
    void onBytesDropped(uint64_t offset, uint64_t count) override
    {
        require(count == m_handedOver && offset == m_taken + m_dropped);
        m_dropped += count;
        m_handedOver = 0;
    }

    std::vector<std::pair<uint64_t, size_t>> m_blocks;
    uint64_t m_appended = 0;
    uint64_t m_taken = 0;
    uint64_t m_dropped = 0;
    uint64_t m_handedOver = 0; // bytes of the next report
    tqx::BlockFramer m_framer{this};
};

} // namespace

// The first byte chooses the size of the pieces.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0) {
        return 0;
    }
    const size_t piece = data[0] + size_t{1};
    const std::vector<uint8_t> stream = withChecksums(data + 1, size - 1);

    Checked inPieces;
    for (size_t at = 0; at < stream.size(); at += piece) {
        inPieces.append(stream.data() + at, std::min(piece, stream.size() - at));
    }
    inPieces.flush();

    Checked whole;
    whole.append(stream.data(), stream.size());
    whole.flush();
    require(whole.blocks() == inPieces.blocks());

    Checked doubting;
    for (size_t at = 0; at < stream.size(); at += piece) {
        doubting.append(stream.data() + at, std::min(piece, stream.size() - at));
        doubting.passWaiting();
    }
    doubting.flush();
    return 0;
}
