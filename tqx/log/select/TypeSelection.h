#pragma once

#include "tqx/log/schema/Schema.h"
#include "tqx_log_export.h"

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tqx
{

/// Which blocks a command looks at, by block number.
class TQX_LOG_API TypeSelection
{
public:
    /// One more than the highest block number.
    static constexpr size_t numbers = 1 << 13;

    /// Everything, with the built types.
    TypeSelection() { m_accepted.set(); }

    /// The types listed in `wanted` (all when it is empty) but those in `unwanted`. Entries are
    /// names of main blocks, case ignored, patterns of them with * and ?, or block numbers, known
    /// or not. Throws DataError for anything else.
    TypeSelection(const std::vector<std::string>& wanted, const std::vector<std::string>& unwanted,
                  const Schema& schema = {});

    /// The types whose names it knows, by which conditions are resolved, too.
    const Schema& getSchema() const { return m_schema; }

    bool isEverything() const { return m_accepted.all(); }

    bool accepts(uint16_t blockNumber) const { return m_accepted[blockNumber]; }

private:
    Schema m_schema;
    std::bitset<numbers> m_accepted;
};

} // namespace tqx
