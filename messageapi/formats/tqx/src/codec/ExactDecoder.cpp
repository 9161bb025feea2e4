#include "ExactDecoder.h"

#include "CodecAssert.h"
#include "DescribedRecord.h"
#include "RecordMembers.h"
#include "TQX_LayoutFunctions.h"
#include "korcg_bits.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace Kor::MessageApi
{

namespace
{

class ExactDecoder
{
public:
    ExactDecoder(const TQX_TypeLayout& type, TQX_Context_s* context, const uint8_t* buffer,
                 uint16_t size, uint32_t* offset, void* record)
        : m_type(type), m_context(context), m_buffer(buffer), m_size(size), m_offset(*offset),
          m_start(*offset), m_record(record)
    {
    }

    int32_t run(void* father, uint32_t explicitLength);
    uint32_t offset() const { return m_offset; }

private:
    bool fits(uint32_t bits) const { return uint64_t{m_offset} + bits <= uint64_t{m_size} * 8; }
    bool isOnWire(const TQX_FieldLayout& field) const;
    void readElement(const TQX_FieldLayout& field, uint32_t index);
    void readValue(const TQX_FieldLayout& field);
    void readArray(const TQX_FieldLayout& field);
    void readTail(const TQX_FieldLayout& field, uint32_t index);
    void splitBits(const TQX_FieldLayout& word, uint32_t index);
    void followUp(const TQX_FieldLayout& field);
    int32_t readBlocks(const TQX_FieldLayout& field);
    bool hasRoomFor(const TQX_FieldLayout& field, uint32_t count) const;
    int32_t readEntry(const TQX_FieldLayout& field, uint32_t index);
    uint32_t entryBits(const TQX_FieldLayout& field) const;
    bool applyLength(uint32_t explicitLength);

    const TQX_TypeLayout& m_type;
    TQX_Context_s* m_context;
    const uint8_t* m_buffer;
    uint16_t m_size;
    uint32_t m_offset;
    uint32_t m_start;
    void* m_record;
    int32_t m_pending = 0;
};

bool ExactDecoder::isOnWire(const TQX_FieldLayout& field) const
{
    if (field.presence == TQX_Presence::Always || field.alwaysSent)
        return true;
    if (m_pending != 0)
        return false;
    if (field.presence != TQX_Presence::Selected && m_type.linksToMain != 0)
        assertMainBlock(m_type, fatherOf(m_record));
    return TQX_isPresent(m_type, field, m_record);
}

void ExactDecoder::readElement(const TQX_FieldLayout& field, uint32_t index)
{
    const uint32_t bits = TQX_elementSize(field) * 8;
    void* element = TQX_element(field, m_record, index);
    const auto width = static_cast<uint8_t>(bits);
    switch (bits) {
    case 8: {
        uint8_t value;
        korcg_read_u8(m_buffer, m_size, m_offset, width, &value);
        std::memcpy(element, &value, sizeof value);
        break;
    }
    case 16: {
        uint16_t value;
        korcg_read_u16(m_buffer, m_size, m_offset, width, &value);
        std::memcpy(element, &value, sizeof value);
        break;
    }
    case 32: {
        uint32_t value;
        korcg_read_u32(m_buffer, m_size, m_offset, width, &value);
        std::memcpy(element, &value, sizeof value);
        break;
    }
    default: {
        uint64_t value;
        korcg_read_u64(m_buffer, m_size, m_offset, width, &value);
        std::memcpy(element, &value, sizeof value);
        break;
    }
    }
    m_offset += bits;
    addBits(m_record, bits);
}

void ExactDecoder::splitBits(const TQX_FieldLayout& word, uint32_t index)
{
    const auto row = static_cast<int16_t>(&word - m_type.fields);
    for (int i = row + 1; i < m_type.fieldCount && m_type.fields[i].parent == row; ++i) {
        const TQX_FieldLayout& part = m_type.fields[i];
        uint64_t value =
            TQX_bitsOf(m_type.fields + row + 1, part, TQX_unsignedValue(word, m_record, index));
        if (TQX_isSigned(part) && (value >> (part.width - 1)) != 0)
            value |= ~uint64_t{0} << (part.width - 1);
        writeUnsigned(part, m_record, index, value);
    }
}

void ExactDecoder::followUp(const TQX_FieldLayout& field)
{
    if (m_type.linksToMain == 0 && field.recordOffset == offsetof(TQX_MainHeader_s, TOW)) {
        writeMember(
            m_record, offsetof(TQX_MainHeader_s, TOWc),
            TQX_continuousTime(m_context, readMember<uint32_t>(m_record, field.recordOffset)));
    }
    if (field.derive != nullptr)
        field.derive(m_record);
    if (m_type.described != nullptr)
        deriveAfter(m_type, field, m_record);
}

void ExactDecoder::readValue(const TQX_FieldLayout& field)
{
    if (!fits(TQX_elementSize(field) * 8)) {
        m_pending = field.code;
        return;
    }
    readElement(field, 0);
    splitBits(field, 0);
    followUp(field);
}

// A payload that is counted in bytes may end inside an element; those bytes go into the next one.
void ExactDecoder::readTail(const TQX_FieldLayout& field, uint32_t index)
{
    const TQX_FieldLayout& count = m_type.fields[field.count];
    const auto bytes = static_cast<uint32_t>(TQX_unsignedValue(count, m_record));
    const uint32_t tail = bytes % TQX_elementSize(field);
    if (tail == 0)
        return;
    uint64_t value = 0;
    for (uint32_t i = 0; i < tail && m_pending == 0; ++i) {
        if (fits(8)) {
            uint8_t byte;
            korcg_read_u8(m_buffer, m_size, m_offset, 8, &byte);
            value |= uint64_t{byte} << (8 * i);
            m_offset += 8;
            addBits(m_record, 8);
        } else {
            m_pending = field.code;
        }
    }
    writeUnsigned(field, m_record, index, value);
}

void ExactDecoder::readArray(const TQX_FieldLayout& field)
{
    const bool counted = field.count >= 0;
    const uint32_t count = counted ? countOf(m_type, field, m_record) : field.elements;
    const uint32_t room = std::min<uint32_t>(count, field.elements);
    uint32_t read = 0;
    while (read < room && fits(TQX_elementSize(field) * 8)) {
        readElement(field, read);
        splitBits(field, read);
        ++read;
    }
    if (read < room) {
        m_pending = field.code;
    } else if (count > field.elements) {
        m_pending = field.code - 1;
    }
    if (field.kind == TQX_FieldKind::Text || field.kind == TQX_FieldKind::CountedText)
        writeUnsigned(field, m_record, read, 0);
    if (m_pending == 0 && field.countsBytes)
        readTail(field, read);
    if (m_pending == 0)
        followUp(field);
}

uint32_t ExactDecoder::entryBits(const TQX_FieldLayout& field) const
{
    if (field.length < 0)
        return 0;
    if (!field.lengthInMain)
        return static_cast<uint32_t>(TQX_unsignedValue(m_type.fields[field.length], m_record)) * 8;
    const void* father = fatherOf(m_record);
    assertKind(m_type, father);
    const TQX_TypeLayout& main = layoutOf(m_type, father);
    return static_cast<uint32_t>(TQX_unsignedValue(main.fields[field.length], father)) * 8;
}

int32_t ExactDecoder::readEntry(const TQX_FieldLayout& field, uint32_t index)
{
    void* entry = TQX_element(field, m_record, index);
    const int32_t result = decodeExactly(*field.sub, m_context, m_buffer, m_size, &m_offset,
                                         m_record, entryBits(field), entry);
    if (result >= 0)
        addBits(m_record, readMember<uint32_t>(entry, offsetof(KorcgHeader_s, korcg_bits)));
    return result;
}

// Built-in types have entries so small that any count of them can be allocated. Others could
// request more memory than there is, with a block of a few bytes.
bool ExactDecoder::hasRoomFor(const TQX_FieldLayout& field, uint32_t count) const
{
    if (field.sub->described == nullptr)
        return true;
    const uint64_t end = uint64_t{m_size} * 8;
    const uint64_t left = end > m_offset ? (end - m_offset) / 8 : 0;
    return uint64_t{count} * field.sub->described->leastEntry <= left;
}

int32_t ExactDecoder::readBlocks(const TQX_FieldLayout& field)
{
    const uint32_t count = countOf(m_type, field, m_record);
    if (count == 0)
        return 0;
    if (!hasRoomFor(field, count))
        return field.sub->sizeUnderflow;
    setArray(field, m_record, std::calloc(count, TQX_elementSize(field)), ArrayStorage::Own);
    for (uint32_t i = 0; i < count; ++i) {
        if (const int32_t result = readEntry(field, i); result < 0)
            return result;
    }
    return 0;
}

// False when more bits were consumed than the entry has.
bool ExactDecoder::applyLength(uint32_t explicitLength)
{
    KORCG_ASSERT(codecPath, m_offset >= m_start, "(*offset) >= loffset");
    if (m_offset - m_start > explicitLength)
        return false;
    m_offset = m_start + explicitLength;
    return true;
}

int32_t ExactDecoder::run(void* father, uint32_t explicitLength)
{
    TQX_initRecord(m_type, m_record);
    writeMember<void*>(m_record, offsetof(KorcgHeader_s, korcg_father), father);
    uint32_t lengthToApply = explicitLength;
    for (int i = 0; i < m_type.fieldCount; ++i) {
        const TQX_FieldLayout& field = m_type.fields[i];
        if (field.kind == TQX_FieldKind::Bits || field.kind == TQX_FieldKind::Derived)
            continue;
        if (field.kind == TQX_FieldKind::Value) {
            if (isOnWire(field))
                readValue(field);
            continue;
        }
        if (m_pending != 0 || !isOnWire(field))
            continue;
        // The length of an entry covers the fields before its nested entries.
        const bool nested = field.kind == TQX_FieldKind::Blocks ||
                            (field.kind == TQX_FieldKind::Embedded && field.length >= 0);
        if (nested && father != nullptr && lengthToApply != 0) {
            if (!applyLength(lengthToApply))
                return m_type.sizeUnderflow;
            lengthToApply = 0;
        }
        if (field.kind == TQX_FieldKind::Blocks) {
            if (const int32_t result = readBlocks(field); result < 0)
                return result;
        } else if (field.kind == TQX_FieldKind::Embedded) {
            if (const int32_t result = readEntry(field, 0); result < 0)
                return result;
        } else {
            readArray(field);
        }
    }
    if (lengthToApply != 0 && m_pending == 0 && !applyLength(lengthToApply))
        m_pending = m_type.sizeUnderflow;
    if (m_pending != 0)
        return m_pending;
    // An explicit length may lead past the last offset, or further than a result can say.
    constexpr uint32_t longest = std::numeric_limits<int32_t>::max();
    if (m_offset < m_start || m_offset - m_start > longest)
        return m_type.internal;
    return static_cast<int32_t>(m_offset - m_start);
}

} // namespace

int32_t decodeExactly(const TQX_TypeLayout& type, TQX_Context_s* context, const uint8_t* buffer,
                      uint16_t size, uint32_t* offset, void* father, uint32_t explicitLength,
                      void* record)
{
    ExactDecoder decoder(type, context, buffer, size, offset, record);
    const int32_t result = decoder.run(father, explicitLength);
    *offset = decoder.offset();
    return result;
}

int32_t TQX_decodeAs(const TQX_TypeLayout& type, TQX_Context_s* context, const uint8_t* buffer,
                     uint16_t size, void* record)
{
    uint32_t offset = 0;
    return decodeExactly(type, context, buffer, size, &offset, nullptr, 0, record);
}

} // namespace Kor::MessageApi
