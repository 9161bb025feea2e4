#pragma once

#include "tqx/log/record/DecodedBlock.h"
#include "tqx/log/schema/Schema.h"
#include "tqx/log/stream/WeekContext.h"
#include "tqx_log_export.h"

#include "TQX_OwnedRecord.h"

namespace tqx
{

/// Decodes the blocks of a stream into records, one by one. Used by one thread at a time.
///
///     RecordDecoder decoder;
///     for (Block block; stream.next(block);)
///         if (decoder.decode(block) > 0)
///             use(decoder.getRecord());
class TQX_LOG_API RecordDecoder
{
public:
    /// Decodes blocks of the schema's types. Throws std::bad_alloc.
    explicit RecordDecoder(const Schema& schema = {});
    RecordDecoder(RecordDecoder&& other) noexcept = default;
    /// The old content moves to `other`: its record needs its schema.
    RecordDecoder& operator=(RecordDecoder&& other) noexcept;

    /// Decodes a block, replacing the one before. Returns the bits consumed, or the codec's
    /// negative code, after which there is no record. The block's bytes must stay valid only for
    /// getDecoded().
    int32_t decode(const Block& block);

    /// The same for a block that does not follow the one before, with the context that its stream
    /// or index gives for it.
    int32_t decode(const Block& block, const WeekContext& context);

    /// The record of the last block that decoded; belongs to the decoder.
    const void* getRecord() const { return m_record.get(); }

    /// The last block, if it decoded, with its record.
    DecodedBlock getDecoded() const { return {m_last, m_record.get(), m_consumed}; }

private:
    Schema m_schema;
    Kor::MessageApi::TQX_Context_s m_context;
    Kor::MessageApi::TQX_OwnedRecord m_record;
    Block m_last = {};
    int32_t m_consumed = 0;
};

} // namespace tqx
