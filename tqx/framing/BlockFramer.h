#pragma once

#include "tqx/framing/CandidateChecksum.h"
#include "tqx/framing/InnerBlockSearch.h"
#include "tqx_framing_export.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tqx
{

/// Finds complete TQX blocks with valid checksums in a stream of bytes.
///
/// A block begins with "$@", a 16-bit checksum and, at byte 6, its 16-bit length (all numbers
/// little endian); the checksum covers byte 4 to the end. Lengths below 8 are invalid, alignment is
/// not tested. After a bad checksum or an invalid length the search continues two bytes after the
/// false sync, so that damage never costs an intact block after it. The result depends only on the
/// bytes, never on the pieces in which they arrive.
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
/// A false header delays a live stream: intact blocks after it are found only once as many bytes as
/// it claims, up to 65,535, have arrived. A caller that knows more, such as that nothing has
/// arrived for a while or that no type has the number, may ask for a decision earlier, see
/// waiting() and passWaiting(). The result then depends on when it asks. The framer never does so
/// by itself; do not use this for files.
///
/// Not thread safe. Listeners may call back into the framer.
class TQX_FRAMING_API BlockFramer
{
public:
    /// Receives damage reports while append(), flush() and takeBlock() run. `offset` counts from
    /// the first byte ever appended.
    class TQX_FRAMING_API Listener
    {
    public:
        /// A complete candidate whose checksum does not match.
        virtual void onChecksumFailed(uint64_t offset) = 0;
        /// A candidate that claims fewer bytes than a header has.
        virtual void onInvalidLength(uint64_t offset) = 0;
        /// `count` (> 0) bytes that belong to no block, in one run that ends before the next block
        /// or with the available bytes.
        virtual void onBytesDropped(uint64_t offset, uint64_t count) = 0;
        /// The bytes of the next report of dropped bytes, all of them, in order, in one piece or
        /// two. They stay valid until this function returns or calls the framer. Does nothing by
        /// default.
        virtual void onDroppedPiece(uint64_t offset, const uint8_t* bytes, size_t size);

    protected:
        Listener() = default;
        Listener(const Listener&) = default;
        Listener& operator=(const Listener&) = default;
        ~Listener();
    };

    /// A complete block, sync characters included. Its bytes belong to the framer and stay valid
    /// until the next non-const call.
    struct Block {
        const uint8_t* data; ///< null when there is no block
        size_t size;         ///< 8 to 65,535, 0 when there is no block
        uint64_t offset;     ///< offset in the stream
    };

    /// A candidate with a complete header that waits for the rest of the bytes that it claims. Its
    /// bytes belong to the framer and stay valid until the next non-const call.
    struct Candidate {
        const uint8_t* data; ///< null when none is waiting
        size_t size;         ///< of its available part, at least 8
        size_t length;       ///< that it claims, more than `size`
        uint64_t offset;     ///< offset in the stream
    };

    /// `listener` is not owned, must outlive the framer and may be null.
    explicit BlockFramer(Listener* listener = nullptr);
    BlockFramer(const BlockFramer&) = delete;
    BlockFramer& operator=(const BlockFramer&) = delete;
    ~BlockFramer();

    /// Adds a piece of the stream; the bytes are copied.
    void append(const uint8_t* bytes, size_t size);

    /// Ends the input: candidates that wait for more bytes are given up, so that intact blocks
    /// after them are found. Once those are taken, no byte is left. A later append() begins a new
    /// stretch of input; take the blocks first, or what still waits will go on waiting.
    void flush();

    /// Whether a complete block is available.
    bool hasBlock() const { return m_blockSize != 0; }

    /// The next block; stays available until it is taken.
    Block block() const;

    /// Removes the current block, if any, and looks for the next one.
    void takeBlock();

    /// The candidate that the framer is waiting for. Not to be called by listeners.
    Candidate waiting() const;

    /// For live streams, when the caller doubts the waiting candidate. If a complete block with a
    /// correct checksum begins within the available bytes after its sync, the candidate is given up
    /// as at the end of input and the search continues; else nothing happens, as nothing is held
    /// back. Returns whether it was given up: then there is a block, or another candidate is
    /// waiting. This may lose an intact block that is still on its way and contains a complete
    /// block in its body.
    ///
    ///     while (!framer.hasBlock() && isDoubtful(framer.waiting()) && framer.passWaiting()) {
    ///     }
    ///
    /// Calling this after every piece is also linear in the bytes appended.
    bool passWaiting();

    /// Number of bytes appended that are neither taken nor reported as dropped.
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
    size_t m_blockSize = 0;    ///< size of the block at m_head, 0 for none
    uint64_t m_offset = 0;     ///< of m_head in the stream
    uint64_t m_unreported = 0; ///< dropped bytes before m_head that are yet to be reported
    size_t m_handedOver = 0;   ///< those of them that never came into the buffer
    bool m_ended = false;
    CandidateChecksum m_checksum;
    InnerBlockSearch m_inner; ///< of passWaiting()
};

} // namespace tqx
