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

/// Whatever writes blocks in some form, each by itself. Writers of the same form are used side by
/// side on several threads, a writer on one at a time.
class BatchWriter
{
public:
    virtual ~BatchWriter() = default;

    /// Appends what is shown of a block.
    virtual void write(BatchText& out, const BatchEntry& entry) = 0;
};

/// A writer whose text all goes to one file, wherever in the stream a block is.
class BlockWriter : public BatchWriter
{
public:
    /// Appends what is shown of a block that decoded.
    virtual void write(Buffer& out, const DecodedBlock& decoded) = 0;

    /// Appends what is shown of a block of an unknown number, or of one that did not decode: of
    /// one without record.
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
