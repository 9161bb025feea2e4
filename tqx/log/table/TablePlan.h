#pragma once

#include "tqx/log/table/ColumnPlan.h"
#include "tqx/log/table/TableOptions.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace tqx
{

/// What a row says about its block besides the fields. Columns read it like a record.
struct RowFacts {
    /// In columns of time: not available.
    static constexpr int64_t noTime = INT64_MIN;

    int64_t time = noTime; ///< nanoseconds since 1970 in GPS time
    int64_t utc = noTime;  ///< nanoseconds since 1970
    uint64_t offset = 0;
    uint32_t file = 0; ///< number of its name
};

/// How blocks whose fields are all at constant offsets are read without decoding.
struct WireHead {
    bool isUsable = false;
    std::array<uint32_t, 8> needed{}; ///< bytes that decoding takes, by revision
    uint32_t size = 0;                ///< the most of these
    uint32_t towcOffset = 0;          ///< where TOWc is put after them
    uint32_t stride = 0;              ///< from head to head, TOWc included
};

/// The columns of a table, and where their values come from.
struct TablePlan {
    /// Records on the way from the main block to those that have rows, which are the last.
    struct Level {
        const Kor::MessageApi::TQX_TypeLayout* type;
        const Kor::MessageApi::TQX_FieldLayout* field; ///< of the level before; null for the main
        std::vector<ColumnPlan> columns;
    };

    /// Throws DataError, see TableSchema.
    TablePlan(const Kor::MessageApi::TQX_TypeLayout& type, const TableOptions& options);

    std::vector<ColumnPlan> aboutBlock; ///< read from RowFacts
    std::vector<Level> levels;
    WireHead wire;
};

} // namespace tqx
