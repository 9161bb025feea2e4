#pragma once

#include "output/BatchText.h"
#include "tqx/log/record/DecodedBlock.h"
#include "tqx/log/text/Buffer.h"

#include <cstdint>

namespace tqx::tool
{

/// A block of a batch.
struct BatchEntry {
    DecodedBlock decoded;
    uint64_t index; ///< of those of its type that decoded, from 0; 0 for one without record
};

/// Writes blocks in some form, each independently. Several writers of one form are used in
/// parallel; each is used by one thread at a time.
class BatchWriter
{
public:
    virtual ~BatchWriter() = default;

    /// Appends the text of a block.
    virtual void write(BatchText& out, const BatchEntry& entry) = 0;
};

/// A writer whose whole text goes to one file.
class BlockWriter : public BatchWriter
{
public:
    /// Appends the text of a block that decoded.
    virtual void write(Buffer& out, const DecodedBlock& decoded) = 0;

    /// Appends the text of a block without a record: of an unknown number, or one that did not
    /// decode.
    virtual void writeOther(Buffer&, const DecodedBlock&) {}

    void write(BatchText& out, const BatchEntry& entry) final
    {
        if (entry.decoded.record) {
            write(out.text, entry.decoded);
        } else {
            writeOther(out.text, entry.decoded);
        }
    }
};

} // namespace tqx::tool
