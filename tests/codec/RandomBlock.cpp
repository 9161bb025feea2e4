#include "RandomBlock.h"

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
    uint64_t selected(const TQX_TypeLayout& type, int row, uint64_t word);

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
        if (selector.kind == TQX_FieldKind::Bits)
            value = values[static_cast<size_t>(selector.parent)] >> selector.shift &
                    (~uint64_t{0} >> (64U - selector.width));
        return value == field.presenceValue;
    }
    return field.presence == TQX_Presence::SinceRevision
               ? m_options.revision >= field.presenceValue
               : m_options.revision == field.presenceValue;
}

// A selecting field mostly takes one of the values that select something.
uint64_t Builder::selected(const TQX_TypeLayout& type, int row, uint64_t word)
{
    std::vector<uint64_t> choices;
    for (int i = 0; i < type.fieldCount; ++i)
        if (type.fields[i].presence == TQX_Presence::Selected && type.fields[i].selector == row)
            choices.push_back(type.fields[i].presenceValue);
    if (choices.empty() || m_random() % 8 == 0)
        return word;
    return choices[static_cast<size_t>(m_random() % choices.size())];
}

uint64_t Builder::choose(const TQX_TypeLayout& type, int row)
{
    const TQX_FieldLayout& field = type.fields[row];
    const uint32_t size = TQX_elementSize(field);
    for (int i = 0; i < type.fieldCount; ++i) {
        const TQX_FieldLayout& other = type.fields[i];
        if (other.count == row)
            return m_random() % (std::min<uint64_t>(m_options.largestCount,
                                                    other.elements > 1 ? other.elements : 250) +
                                 1);
        if (other.length == row && !other.lengthInMain)
            return TQX_entrySize(other.recordType, m_options.revision) + m_options.extraBytes;
        // The length of nested entries stands in the main block.
        if (other.kind == TQX_FieldKind::Blocks && type.linksToMain == 0) {
            const TQX_TypeLayout& sub = *TQX_layout(other.recordType);
            for (int j = 0; j < sub.fieldCount; ++j)
                if (sub.fields[j].lengthInMain && sub.fields[j].length == row)
                    return TQX_entrySize(sub.fields[j].recordType, m_options.revision) +
                           m_options.extraBytes;
        }
    }
    return selected(type, row, any(size * 8));
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
            if (field.count >= 0)
                size = values[static_cast<size_t>(field.count)] *
                       (field.countsBytes ? 1 : TQX_elementSize(field));
            for (uint64_t i = 0; i < size; ++i)
                put(any(8), 1);
        }
    }
    fill(start, length);
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

std::vector<const TQX_TypeLayout*> mainTypes()
{
    std::vector<const TQX_TypeLayout*> types;
    for (uint32_t record = 1; record <= 382; ++record)
        if (const TQX_TypeLayout* type = TQX_layout(record);
            type != nullptr && type->blockNumber != 0)
            types.push_back(type);
    return types;
}
