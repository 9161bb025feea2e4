#pragma once

#include "tqx/framing/CandidateChecksum.h"
#include "tqx/framing/InnerBlockSearch.h"
#include "tqx_framing_export.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tqx
{

/// Cuts a stream of bytes into whole, checked TQX blocks.
///
/// A block begins with "$@", a 16-bit checksum and, at byte 6, its 16-bit length (all numbers
/// little endian); the checksum covers byte 4 to the end. Lengths below 8 are invalid, alignment is
/// not tested. After a bad checksum or an invalid length the search goes on two bytes after the
/// false sync, so that no damage costs an intact block after it. What comes out depends only on
/// the bytes, never on the pieces in which they arrive.
///
///     framer.append(bytes, size);
///     while (framer.hasBlock()) {
///         use(framer.block());
///         framer.takeBlock();
///     }
///
/// At all times: bytes of taken blocks + dropped bytes + bytesLeft() == bytes appended.
///
/// The work is linear in the bytes appended, whatever they are and however they are cut. Memory
/// stays within a small multiple of one block (65,535 bytes) plus one piece, as long as the blocks
/// are taken before the next piece is appended.
///
/// A false header costs time on a live stream: what is intact after it comes out only once as many
/// bytes as it claims have come, up to 65,535. A caller that knows more than the bytes say, such as
/// that nothing has come for a while or that no type has the number, may ask for a decision
/// earlier, see waiting() and passWaiting(). What comes out then depends on when it asks. The
/// framer never does so by itself, and files should be read without.
///
/// Not thread safe. Listeners may call back into the framer.
class TQX_FRAMING_API BlockFramer
{
public:
    /// Told about damage while append, flush and takeBlock run. `offset` counts from the first byte
    /// ever appended.
    class TQX_FRAMING_API Listener
    {
    public:
        /// A complete candidate whose checksum does not match.
        virtual void onChecksumFailed(uint64_t offset) = 0;
        /// A candidate that claims fewer bytes than a header has.
        virtual void onInvalidLength(uint64_t offset) = 0;
        /// `count` (> 0) bytes that belong to no block, in one run that ends before the next block
        /// or with the bytes at hand.
        virtual void onBytesDropped(uint64_t offset, uint64_t count) = 0;
        /// The bytes of the next report of dropped ones, all of them, in order and in one piece or
        /// two. They stay valid until this returns or calls the framer. Does nothing by default.
        virtual void onDroppedPiece(uint64_t offset, const uint8_t* bytes, size_t size);

    protected:
        Listener() = default;
        Listener(const Listener&) = default;
        Listener& operator=(const Listener&) = default;
        ~Listener();
    };

    /// A whole block, first sync character included. Its bytes belong to the framer and stay valid
    /// until the next call that is not const.
    struct Block {
        const uint8_t* data; ///< null when there is no block
        size_t size;         ///< 8 to 65,535, 0 when there is no block
        uint64_t offset;     ///< where it is in the stream
    };

    /// A candidate with a whole header that waits for the rest of the bytes that it claims. Its
    /// bytes belong to the framer and stay valid until the next call that is not const.
    struct Candidate {
        const uint8_t* data; ///< null when none waits
        size_t size;         ///< of what is at hand of it, at least 8
        size_t length;       ///< that it claims, more than `size`
        uint64_t offset;     ///< where it is in the stream
    };

    /// `listener` is not owned, must outlive the framer and may be null.
    explicit BlockFramer(Listener* listener = nullptr);
    BlockFramer(const BlockFramer&) = delete;
    BlockFramer& operator=(const BlockFramer&) = delete;
    ~BlockFramer();

    /// Adds a piece of the stream; the bytes are copied.
    void append(const uint8_t* bytes, size_t size);

    /// The input has ended: candidates that wait for more bytes are given up and the intact blocks
    /// after them come out. Once those are taken no byte is left. A later append goes on with a
    /// new stretch of input; take the blocks first, or what still waits will wait on.
    void flush();

    /// Whether a whole block is at hand.
    bool hasBlock() const { return m_blockSize != 0; }

    /// The next block; stays at hand until it is taken.
    Block block() const;

    /// Removes the block at hand, if any, and looks for the next one.
    void takeBlock();

    /// The candidate that keeps the framer from going on. Not for listeners.
    Candidate waiting() const;

    /// For live streams: the caller doubts the candidate that waits. If a whole block with the
    /// right checksum begins within the bytes at hand after its sync, the candidate is given up as
    /// at the end of input and the search goes on; else nothing happens, as nothing is held back.
    /// Returns whether it was given up: then there is a block, or another candidate waits. The
    /// price is an intact block that is still on its way and has a whole block in its body.
    ///
    ///     while (!framer.hasBlock() && isDoubtful(framer.waiting()) && framer.passWaiting()) {
    ///     }
    ///
    /// Asking after every piece is linear in the bytes appended, too.
    bool passWaiting();

    /// Bytes appended that are neither taken nor reported as dropped.
    size_t bytesLeft() const;

private:
    const uint8_t* head() const { return m_buffer.data() + m_head; }
    size_t available() const { return m_buffer.size() - m_head; }

    void search();
    bool decideCandidate();
    bool giveUpCandidate();
    void drop(size_t count)
    {
        m_head += count;
        m_offset += count;
        m_unreported += count;
    }
    size_t droppedInBuffer() const { return static_cast<size_t>(m_unreported) - m_handedOver; }
    void reportDropped();
    void store(const uint8_t* bytes, size_t size);

    Listener* m_listener;
    std::vector<uint8_t> m_buffer;
    size_t m_head = 0;         ///< first byte of the buffer that is not yet consumed
    size_t m_blockSize = 0;    ///< size of the block that stands at m_head, 0 for none
    uint64_t m_offset = 0;     ///< of m_head in the stream
    uint64_t m_unreported = 0; ///< dropped bytes before m_head that the listener has not heard of
    size_t m_handedOver = 0;   ///< those of them that never came into the buffer
    bool m_ended = false;
    CandidateChecksum m_checksum;
    InnerBlockSearch m_inner; ///< of passWaiting()
};

} // namespace tqx
