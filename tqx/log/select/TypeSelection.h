#pragma once

#include "TQX_Format.h"
#include "tqx/log/schema/Schema.h"
#include "tqx_log_export.h"

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tqx
{

/// Which blocks a command looks at, by block number. Immutable once made.
class TQX_LOG_API TypeSelection
{
public:
    /// One more than the highest block number.
    static constexpr size_t numbers = Kor::MessageApi::TQX_lastBlockNumber + 1;

    /// Everything, with the built types.
    TypeSelection() { m_accepted.set(); }

    /// The types listed in `wanted` (all when it is empty) but those in `unwanted`. Entries are
    /// names of main blocks, case ignored, patterns of them with * and ?, or block numbers, known
    /// or not. Throws DataError for anything else.
    TypeSelection(const std::vector<std::string>& wanted, const std::vector<std::string>& unwanted,
                  const Schema& schema = {});

    /// The types whose names it knows, by which conditions are resolved, too.
    const Schema& getSchema() const { return m_schema; }

    /// Whether blocks of every number are looked at, known ones and others.
    bool isEverything() const { return m_accepted.all(); }

    /// `blockNumber` is below `numbers`.
    bool accepts(uint16_t blockNumber) const { return m_accepted[blockNumber]; }

private:
    Schema m_schema;
    std::bitset<numbers> m_accepted;
};

} // namespace tqx
