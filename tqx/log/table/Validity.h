#pragma once

#include "tqx/log/table/ColumnBuffer.h"

#include <cstddef>
#include <cstdint>

namespace tqx
{

/// Which values of a column are not null: one bit each, from the lowest bit of the first byte on.
/// No bits as long as there is no null.
class Validity
{
public:
    size_t size() const { return m_length; }
    size_t getNulls() const { return m_nulls; }

    void appendValid(size_t count)
    {
        if (m_nulls != 0)
            appendOnes(count);
        m_length += count;
    }

    void appendNulls(size_t count);

    /// Values of which those with flag 1 are valid, the others, whose flag is 0, null.
    void append(const uint8_t* flags, size_t count);

    /// The bits, empty when nothing is null; begins anew.
    ColumnBuffer take();

private:
    void begin();
    void appendOnes(size_t count);
    void appendBit(size_t position, unsigned bit);

    ColumnBuffer m_bits;
    size_t m_length = 0;
    size_t m_nulls = 0;
};

} // namespace tqx
