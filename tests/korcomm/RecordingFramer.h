#pragma once

#include "ReferenceFramer.h"
#include "tqx/framing/BlockFramer.h"

#include <gtest/gtest.h>

#include <algorithm>

/// A tqx::BlockFramer whose doings are written down. After every call it holds the framer to its
/// accounting and every block to the bytes that were appended.
class RecordingFramer : private tqx::BlockFramer::Listener
{
public:
    void append(const uint8_t* bytes, size_t size)
    {
        m_appended.insert(m_appended.end(), bytes, bytes + size);
        m_framer.append(bytes, size);
        takeBlocks();
    }

    void append(const Bytes& bytes) { append(bytes.data(), bytes.size()); }

    void flush()
    {
        m_framer.flush();
        takeBlocks();
    }

    /// Doubts the candidate that waits; returns what the framer says.
    bool passWaiting()
    {
        const bool isPassed = m_framer.passWaiting();
        takeBlocks();
        return isPassed;
    }

    /// Whether a candidate waits with a whole block after its sync, found the straightforward way.
    bool holdsBack() const
    {
        const tqx::BlockFramer::Candidate candidate = m_framer.waiting();
        for (size_t at = 2; at + 8 <= candidate.size; ++at) {
            const uint8_t* inner = candidate.data + at;
            const size_t length = inner[6] + size_t{256} * inner[7];
            if (inner[0] == '$' && inner[1] == '@' && length >= 8 &&
                at + length <= candidate.size &&
                slowChecksum(inner + 4, length - 4) == inner[2] + 256 * inner[3]) {
                return true;
            }
        }
        return false;
    }

    tqx::BlockFramer::Candidate waiting() const { return m_framer.waiting(); }

    const Framing& framing() const { return m_framing; }

private:
    void takeBlocks()
    {
        check();
        while (m_framer.hasBlock()) {
            const tqx::BlockFramer::Block block = m_framer.block();
            ASSERT_LE(block.offset + block.size, m_appended.size());
            EXPECT_TRUE(
                std::equal(block.data, block.data + block.size, m_appended.data() + block.offset));
            m_framing.blocks.push_back({block.offset, block.size});
            m_handedOver = block.offset + block.size;
            m_framer.takeBlock();
            check();
        }
    }

    void check()
    {
        m_framing.left = m_framer.bytesLeft();
        EXPECT_EQ(m_framing.bytesInAll(), m_appended.size());
    }

    void onChecksumFailed(uint64_t offset) override { m_framing.checksumErrors.push_back(offset); }
    void onInvalidLength(uint64_t offset) override { m_framing.invalidLengths.push_back(offset); }
    void onDroppedPiece(uint64_t offset, const uint8_t* bytes, size_t size) override
    {
        ASSERT_EQ(offset, m_handedOver);
        ASSERT_LE(offset + size, m_appended.size());
        EXPECT_TRUE(std::equal(bytes, bytes + size, m_appended.data() + offset));
        m_handedOver += size;
    }
    void onBytesDropped(uint64_t offset, uint64_t count) override
    {
        EXPECT_EQ(m_handedOver, offset + count);
        m_framing.addDropped(offset, count);
    }

    Bytes m_appended;
    uint64_t m_handedOver = 0; ///< end of the blocks and the dropped bytes that came so far
    Framing m_framing;
    tqx::BlockFramer m_framer{this};
};
