#pragma once

#include "tqx/log/text/Buffer.h"
#include "tqx/log/value/ValueStyle.h"
#include "tqx_log_export.h"

#include <cstdint>
#include <string>

namespace tqx
{

/// The first columns of every row: the index of its message within the type, and its time.
class TQX_LOG_API CsvKey
{
public:
    /// "MessageIndex,WNc [week],TOW [second],UTC"; these have units under every style.
    static void appendColumns(Buffer& out, const ValueStyle& style);

    /// Appends the cells of them for a record of a main block, which is the `index`-th of its type,
    /// from 0.
    void append(Buffer& out, uint64_t index, const void* record);

private:
    // The blocks of an epoch share it.
    uint32_t m_tow = 0;
    uint16_t m_week = 0;
    std::string m_time; ///< empty before the first
};

} // namespace tqx
