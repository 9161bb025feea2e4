#pragma once

#include "TQX_OwnedRecord.h"
#include "TQX_codec.h"
#include "output/BatchText.h"
#include "output/BlockWriter.h"
#include "tqx/log/stream/WeekContext.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace tqx::tool
{

/// What decoding carries from block to block of a stream.
struct StreamState {
    explicit StreamState(const Schema& types = {}) : schema(types) { TQX_init_context(&context); }

    Schema schema;
    Kor::MessageApi::TQX_Context_s context;
    std::vector<uint64_t> messages; ///< that decoded so far, by record type
};

/// Consecutive blocks of a stream with their records, and the text that a writer made from them. A
/// batch belongs to one thread at a time.
class BlockBatch
{
public:
    BlockBatch();
    ~BlockBatch();
    BlockBatch(const BlockBatch&) = delete;
    BlockBatch& operator=(const BlockBatch&) = delete;

    bool isEmpty() const { return m_entries.empty(); }
    bool isFull() const
    {
        return m_bytes.size() >= enoughBytes || m_recordBytes >= enoughRecords ||
               m_addedBytes >= enoughRecords;
    }

    /// Decodes a copy of a block that follows the state `before`. Returns the bits consumed or the
    /// codec's negative code. Only while the batch is not full.
    int32_t add(StreamState& state, const Block& block, const WeekContext& before);

    /// Makes the text of all blocks.
    void write(BatchWriter& writer);

    const BatchText& getText() const { return m_text; }

    /// Clears blocks and text, but keeps their memory.
    void clear();

private:
    int32_t addDescribed(StreamState& state, const Block& copy,
                         const Kor::MessageApi::TQX_TypeLayout& type);

    // Small enough that the text, about twenty times as long, stays in a processor's cache.
    static constexpr size_t enoughBytes = 1 << 14;
    static constexpr size_t enoughRecords = 1 << 16;
    using Record = Kor::MessageApi::TQX_AnyRecord_u;

    struct RecordsDeleter {
        void operator()(std::byte* memory) const;
    };

    std::vector<uint8_t> m_bytes; ///< of the blocks; never grows beyond its initial capacity
    std::unique_ptr<std::byte, RecordsDeleter> m_records;  ///< one after the other
    size_t m_recordBytes = 0;                              ///< that are in use
    std::vector<Kor::MessageApi::TQX_OwnedRecord> m_added; ///< of types that are not built
    size_t m_addedBytes = 0;                               ///< that these take
    std::vector<BatchEntry> m_entries;
    BatchText m_text;
};

} // namespace tqx::tool
