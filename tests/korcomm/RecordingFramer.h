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
        appended_.insert(appended_.end(), bytes, bytes + size);
        framer_.append(bytes, size);
        takeBlocks();
    }

    void append(const Bytes& bytes) { append(bytes.data(), bytes.size()); }

    void flush()
    {
        framer_.flush();
        takeBlocks();
    }

    /// Doubts the candidate that waits; returns what the framer says.
    bool passWaiting()
    {
        const bool isPassed = framer_.passWaiting();
        takeBlocks();
        return isPassed;
    }

    /// Whether a candidate waits with a whole block after its sync, found the straightforward way.
    bool holdsBack() const
    {
        const tqx::BlockFramer::Candidate candidate = framer_.waiting();
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

    tqx::BlockFramer::Candidate waiting() const { return framer_.waiting(); }

    const Framing& framing() const { return framing_; }

private:
    void takeBlocks()
    {
        check();
        while (framer_.hasBlock()) {
            const tqx::BlockFramer::Block block = framer_.block();
            ASSERT_LE(block.offset + block.size, appended_.size());
            EXPECT_TRUE(
                std::equal(block.data, block.data + block.size, appended_.data() + block.offset));
            framing_.blocks.push_back({block.offset, block.size});
            handedOver_ = block.offset + block.size;
            framer_.takeBlock();
            check();
        }
    }

    void check()
    {
        framing_.left = framer_.bytesLeft();
        EXPECT_EQ(framing_.bytesInAll(), appended_.size());
    }

    void onChecksumFailed(uint64_t offset) override { framing_.checksumErrors.push_back(offset); }
    void onInvalidLength(uint64_t offset) override { framing_.invalidLengths.push_back(offset); }
    void onDroppedPiece(uint64_t offset, const uint8_t* bytes, size_t size) override
    {
        ASSERT_EQ(offset, handedOver_);
        ASSERT_LE(offset + size, appended_.size());
        EXPECT_TRUE(std::equal(bytes, bytes + size, appended_.data() + offset));
        handedOver_ += size;
    }
    void onBytesDropped(uint64_t offset, uint64_t count) override
    {
        EXPECT_EQ(handedOver_, offset + count);
        framing_.addDropped(offset, count);
    }

    Bytes appended_;
    uint64_t handedOver_ = 0; ///< end of the blocks and the dropped bytes that came so far
    Framing framing_;
    tqx::BlockFramer framer_{this};
};
