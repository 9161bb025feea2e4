#pragma once

#include "LogFile.h"
#include "tqx/log/index/IndexedBlocks.h"
#include "tqx/log/record/RecordDecoder.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace tqx::python
{

/// The blocks of chosen numbers in several consecutive logs, decoded one by one. Can be
/// interrupted.
class LogReader
{
public:
    /// `numbers`: empty for all.
    LogReader(std::vector<std::shared_ptr<LogFile>> logs, std::vector<uint16_t> numbers,
              std::optional<GnssMillis> from = {}, std::optional<GnssMillis> to = {});

    /// Gets the next block, which is valid until the next call; false at the end.
    bool next(Block& block);

    /// Where a block of the log is that the last one is in.
    ByteSource::Place placeOf(const Block& block) const
    {
        return m_logs[m_current]->placeOf(block.offset);
    }

    /// The decoding context of the last block.
    WeekContext getContext() const;

    /// The last block, decoded; its record is null when it does not decode.
    DecodedBlock decode(const Block& block);

private:
    std::vector<std::shared_ptr<LogFile>> m_logs;
    BlockQuery m_query;
    size_t m_current = 0;
    std::optional<IndexedBlocks> m_blocks;
    RecordDecoder m_decoder;
    unsigned m_sinceCheck = 0;
};

/// The numbers of all blocks for which `wants` is true.
std::vector<uint16_t> numbersOf(const std::function<bool(uint16_t)>& wants);

} // namespace tqx::python
