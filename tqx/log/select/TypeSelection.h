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

/// Which blocks a command processes, by block number. Immutable once made.
class TQX_LOG_API TypeSelection
{
public:
    /// One more than the highest block number.
    static constexpr size_t numbers = Kor::MessageApi::TQX_lastBlockNumber + 1;

    /// Accepts everything, with the built-in types.
    TypeSelection() { m_accepted.set(); }

    /// Accepts the types listed in `wanted` (all when it is empty) except those in `unwanted`.
    /// Entries are names of main blocks, case ignored, patterns of them with * and ?, or block
    /// numbers, known or not. Throws DataError for anything else.
    TypeSelection(const std::vector<std::string>& wanted, const std::vector<std::string>& unwanted,
                  const Schema& schema = {});

    /// The types whose names it knows; conditions are resolved with the same ones.
    const Schema& getSchema() const { return m_schema; }

    /// Whether blocks of all numbers are accepted, known or not.
    bool isEverything() const { return m_accepted.all(); }

    /// `blockNumber` is below `numbers`.
    bool accepts(uint16_t blockNumber) const { return m_accepted[blockNumber]; }

private:
    Schema m_schema;
    std::bitset<numbers> m_accepted;
};

} // namespace tqx
