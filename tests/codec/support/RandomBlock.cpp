#include "RandomBlock.h"

#include "FieldRoles.h"
#include "korcg_crc.h"
#include "korcg_load.h"

#include <algorithm>

namespace
{

using namespace Kor::MessageApi;

class Builder
{
public:
    Builder(const BlockOptions& options, std::mt19937_64& random)
        : m_options(options), m_random(random)
    {
    }

    void record(const TQX_TypeLayout& type, uint64_t length = 0);
    void entry(const TQX_TypeLayout& type);
    std::vector<uint8_t> bytes;

private:
    uint64_t any(unsigned bits)
    {
        const uint64_t most = ~uint64_t{0} >> (64U - bits);
        switch (m_random() % 8) {
        case 0:
            return 0;
        case 1:
            return most;
        default:
            return m_random() >> (m_random() % bits) & most;
        }
    }

    void put(uint64_t value, uint32_t size)
    {
        for (uint32_t i = 0; i < size; ++i)
            bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
    }

    void fill(size_t start, uint64_t length);
    void entries(const TQX_FieldLayout& field, const std::vector<uint64_t>& values);
    bool isWanted(const TQX_TypeLayout& type, const TQX_FieldLayout& field,
                  const std::vector<uint64_t>& values) const;
    uint64_t choose(const TQX_TypeLayout& type, int row);

    const BlockOptions& m_options;
    std::mt19937_64& m_random;
    const TQX_TypeLayout* m_main = nullptr;
    std::vector<uint64_t> m_mainValues;
};

bool Builder::isWanted(const TQX_TypeLayout& type, const TQX_FieldLayout& field,
                       const std::vector<uint64_t>& values) const
{
    if (field.alwaysSent || field.presence == TQX_Presence::Always)
        return true;
    if (field.presence == TQX_Presence::Selected) {
        const TQX_FieldLayout& selector = type.fields[field.selector];
        uint64_t value = values[static_cast<size_t>(field.selector)];
        if (selector.kind == TQX_FieldKind::Bits) {
            value = values[static_cast<size_t>(selector.parent)] >> selector.shift &
                    (~uint64_t{0} >> (64U - selector.width));
        }
        return value == field.presenceValue;
    }
    return field.presence == TQX_Presence::SinceRevision
               ? m_options.revision >= field.presenceValue
               : m_options.revision == field.presenceValue;
}

uint64_t Builder::choose(const TQX_TypeLayout& type, int row)
{
    const FieldRole& role = roleOf(type, row);
    if (role.counted != nullptr) {
        const TQX_FieldLayout& counted = *role.counted;
        if (m_options.overrun && !holdsEntries(counted))
            return (counted.elements + 1U) * (counted.countsBytes ? TQX_elementSize(counted) : 1U);
        const uint64_t room = counted.elements > 1 ? counted.elements : 250;
        return m_random() % (std::min<uint64_t>(m_options.largestCount, room) + 1);
    }
    if (role.sized != nullptr)
        return TQX_entrySize(role.sized->recordType, m_options.revision) + m_options.extraBytes;
    const uint32_t bits = TQX_elementSize(type.fields[row]) * 8;
    const uint64_t word = any(bits) & ~uint64_t{0} >> (64 - bits);
    if (role.choices.empty() || m_random() % 8 == 0)
        return word;
    // A selecting field mostly takes one of the values that select something.
    uint64_t chosen = word;
    for (size_t parts = 0; parts < role.choices.size(); ++parts) {
        const FieldRole::Choice& choice =
            role.choices[static_cast<size_t>(m_random() % role.choices.size())];
        chosen = (chosen & ~choice.mask) | choice.bits;
    }
    return chosen;
}

// Fills an entry up to the length that its block states: with zeros, as an encoder would, unless
// unknown bytes are asked for.
void Builder::fill(size_t start, uint64_t length)
{
    while (bytes.size() < start + length)
        put(m_options.extraBytes == 0 ? 0 : any(8), 1);
}

void Builder::entries(const TQX_FieldLayout& field, const std::vector<uint64_t>& values)
{
    uint64_t length = 0;
    if (field.length >= 0)
        length = (field.lengthInMain ? m_mainValues : values)[static_cast<size_t>(field.length)];
    const uint64_t count =
        field.kind == TQX_FieldKind::Blocks ? values[static_cast<size_t>(field.count)] : 1;
    for (uint64_t i = 0; i < count; ++i)
        record(*TQX_layout(field.recordType), length);
}

void Builder::record(const TQX_TypeLayout& type, uint64_t length)
{
    std::vector<uint64_t> values(type.fieldCount, 0);
    const bool isMain = m_main == nullptr;
    const size_t start = bytes.size();
    if (isMain)
        m_main = &type;
    for (int row = 0; row < type.fieldCount; ++row) {
        const TQX_FieldLayout& field = type.fields[row];
        if (field.kind == TQX_FieldKind::Bits || field.kind == TQX_FieldKind::Derived ||
            !isWanted(type, field, values))
            continue;
        const auto at = static_cast<size_t>(row);
        if (field.kind == TQX_FieldKind::Blocks || field.kind == TQX_FieldKind::Embedded) {
            if (isMain)
                m_mainValues = values;
            if (field.kind == TQX_FieldKind::Blocks || field.length >= 0) {
                fill(start, length);
                length = 0;
            }
            entries(field, values);
        } else if (field.kind == TQX_FieldKind::Value) {
            values[at] = choose(type, row);
            if (isMain && field.wireOffset == 4)
                values[at] = uint64_t{type.blockNumber} | m_options.revision << 13U;
            put(values[at], TQX_elementSize(field));
        } else {
            uint64_t size = uint64_t{field.elements} * TQX_elementSize(field);
            if (field.count >= 0) {
                size = values[static_cast<size_t>(field.count)] *
                       (field.countsBytes ? 1 : TQX_elementSize(field));
            }
            for (uint64_t i = 0; i < size; ++i)
                put(any(8), 1);
        }
    }
    fill(start, length);
}

void Builder::entry(const TQX_TypeLayout& type)
{
    m_main = ownerOf(type);
    m_mainValues.assign(m_main->fieldCount, 0);
    record(type);
}

} // namespace

std::vector<uint8_t> randomBlock(const TQX_TypeLayout& type, const BlockOptions& options,
                                 std::mt19937_64& random)
{
    Builder builder(options, random);
    builder.record(type);
    std::vector<uint8_t>& block = builder.bytes;
    block[0] = '$';
    block[1] = '@';
    korcg_store_u16(block.data() + 6, static_cast<uint16_t>(block.size()));
    korcg_store_u16(block.data() + 2, korcg_crc16_bytes(block.data() + 4, block.size() - 4));
    return block;
}

std::vector<uint8_t> randomEntry(const TQX_TypeLayout& type, const BlockOptions& options,
                                 std::mt19937_64& random)
{
    Builder builder(options, random);
    builder.entry(type);
    return builder.bytes;
}
