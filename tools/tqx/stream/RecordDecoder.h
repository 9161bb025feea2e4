#pragma once

#include "BlockStream.h"
#include "TQX_codec.h"

#include <memory>

namespace tool
{

/// Decodes blocks into records without making messages of them: the way for whatever needs the
/// stored values of a block, or only its result.
class RecordDecoder
{
public:
    RecordDecoder();
    ~RecordDecoder();
    RecordDecoder(const RecordDecoder&) = delete;
    RecordDecoder& operator=(const RecordDecoder&) = delete;

    /// Decodes a block in place of the one before. Returns the bits consumed or the codec's
    /// negative code.
    int32_t decode(const Block& block);

    /// The record of the last block that decoded; belongs to the decoder.
    const void* getRecord() const { return record.get(); }

    /// Its header.
    const Kor::MessageApi::TQX_MainHeader_s& getHeader() const
    {
        return *reinterpret_cast<const Kor::MessageApi::TQX_MainHeader_s*>(record.get());
    }

    /// Whether every byte of the block stands in a field of the record.
    bool coversBlock(const Block& block) const
    {
        const uint32_t bits = static_cast<uint32_t>(block.size) * 8;
        return consumed == static_cast<int32_t>(bits) && getHeader().korcg_bits == bits;
    }

private:
    void clear();

    Kor::MessageApi::TQX_Context_s context;
    std::unique_ptr<Kor::MessageApi::TQX_AnyRecord_u> record;
    int32_t consumed = 0;
};

} // namespace tool
