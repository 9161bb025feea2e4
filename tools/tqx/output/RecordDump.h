#pragma once

#include "options/StreamOptions.h"
#include "tqx/log/record/RecordDecoder.h"

namespace tqx::tool
{

/// Whatever is written of blocks by their records. Several inputs are decoded as one stream.
class RecordDump : public BlockConsumer
{
public:
    void take(BlockStream& stream, const Block& block) override;

protected:
    /// A block that `decoder` has just decoded.
    virtual void write(const Block& block, const RecordDecoder& decoder) = 0;

    /// A block of an unknown number, or one that does not decode.
    virtual void writeOther(const Block&) {}

private:
    RecordDecoder m_records;
};

} // namespace tqx::tool
