#include "tqx/log/table/Validity.h"

#include "korcg_load.h"

#include <cstring>
#include <utility>

namespace tqx
{

namespace
{

/// Eight flags as eight bits, the first one as the lowest: the product moves flag i, which is bit
/// 8i of the word, to bit 56 + i, and no two flags to the same bit.
uint8_t pack(const uint8_t* flags)
{
    constexpr uint64_t spread = 0x0102040810204080;
    return static_cast<uint8_t>(korcg_load_u64(flags) * spread >> 56U);
}

/// Flags that are 1: the product adds those of eight in its highest byte.
size_t countOnes(const uint8_t* flags, size_t count)
{
    constexpr uint64_t ones = 0x0101010101010101;
    size_t sum = 0;
    for (; count >= 8; count -= 8, flags += 8)
        sum += korcg_load_u64(flags) * ones >> 56U;
    for (; count != 0; --count)
        sum += *flags++;
    return sum;
}

} // namespace

void Validity::begin()
{
    if (m_nulls != 0)
        return;
    const size_t before = std::exchange(m_length, 0);
    appendOnes(before);
    m_length = before;
}

void Validity::appendBit(size_t position, unsigned bit)
{
    if (position % 8 == 0)
        *m_bits.extend(1) = 0;
    m_bits.data()[position / 8] |= static_cast<uint8_t>(bit << position % 8);
}

void Validity::appendOnes(size_t count)
{
    size_t position = m_length;
    const size_t end = m_length + count;
    while (position < end && position % 8 != 0)
        appendBit(position++, 1);
    const size_t whole = (end - position) / 8;
    if (whole != 0)
        std::memset(m_bits.extend(whole), 0xff, whole);
    for (position += whole * 8; position < end; ++position)
        appendBit(position, 1);
}

void Validity::appendNulls(size_t count)
{
    if (count == 0)
        return;
    begin();
    const size_t bytes = (m_length + count + 7) / 8;
    if (const size_t more = bytes - m_bits.size(); more != 0)
        std::memset(m_bits.extend(more), 0, more);
    m_length += count;
    m_nulls += count;
}

void Validity::append(const uint8_t* flags, size_t count)
{
    const size_t valid = countOnes(flags, count);
    if (valid == count)
        return appendValid(count);
    begin();
    const size_t end = m_length + count;
    size_t position = m_length;
    while (position < end && position % 8 != 0)
        appendBit(position++, *flags++);
    const size_t whole = (end - position) / 8;
    uint8_t* bytes = m_bits.extend(whole);
    for (size_t i = 0; i < whole; ++i, flags += 8)
        bytes[i] = pack(flags);
    for (position += whole * 8; position < end; ++position)
        appendBit(position, *flags++);
    m_length = end;
    m_nulls += count - valid;
}

ColumnBuffer Validity::take()
{
    m_length = 0;
    m_nulls = 0;
    return std::exchange(m_bits, ColumnBuffer());
}

} // namespace tqx
