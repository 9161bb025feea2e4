#pragma once

#include "LogFile.h"
#include "tqx/log/source/FileAccess.h"
#include "tqx/log/stream/BlockStream.h"

#include <memory>
#include <string>

namespace tqx::python
{

/// All blocks of a part of a log without an index, as one pass over all of the log has them. Can be
/// interrupted.
class PartStream
{
public:
    /// Several files are joined and read whole, and so is a compressed one. Throws SourceError.
    PartStream(const std::vector<std::string>& paths, const Partition& part, const Schema& schema);

    /// Gets the next block, whose bytes stay valid until the next call; false at the end. Throws
    /// SourceError.
    bool next(Block& block);

    /// Of decoding after the last block.
    const WeekContext& getContext() const { return m_week; }

    /// Name of the file that the last block is in.
    const std::string& getName() const { return m_stream->getName(); }

private:
    std::unique_ptr<FileAccess> m_file;
    std::unique_ptr<ByteSource> m_source;
    std::unique_ptr<BlockStream> m_stream;
    Schema m_schema;
    uint64_t m_begin;
    WeekContext m_week;
    unsigned m_sinceCheck = 0;
};

} // namespace tqx::python
