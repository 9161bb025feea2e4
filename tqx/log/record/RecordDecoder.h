#pragma once

#include "TQX_codec.h"
#include "tqx/log/record/DecodedBlock.h"

#include <memory>

namespace tqx
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

    /// The last block, if it decoded, with its record.
    DecodedBlock getDecoded() const { return {last, record.get(), consumed}; }

private:
    void clear();

    Kor::MessageApi::TQX_Context_s context;
    std::unique_ptr<Kor::MessageApi::TQX_AnyRecord_u> record;
    Block last = {};
    int32_t consumed = 0;
};

} // namespace tqx
