#pragma once

#include "tqx/log/record/DecodedBlock.h"
#include "tqx/log/text/Buffer.h"

namespace tqx::tool
{

/// Whatever writes blocks in some form, each by itself. Writers of the same form are used side by
/// side on several threads, a writer on one at a time.
class BlockWriter
{
public:
    virtual ~BlockWriter() = default;

    /// Appends what is shown of a block that decoded.
    virtual void write(Buffer& out, const DecodedBlock& decoded) = 0;

    /// Appends what is shown of a block of an unknown number, or of one that did not decode: of
    /// one without record.
    virtual void writeOther(Buffer&, const DecodedBlock&) {}
};

} // namespace tqx::tool
