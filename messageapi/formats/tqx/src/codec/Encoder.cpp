#include "Encoder.h"

#include "CodecAssert.h"
#include "RecordMembers.h"
#include "TQX_Format.h"
#include "TQX_LayoutFunctions.h"
#include "TQX_codec.h"
#include "korcg_bits.h"
#include "korcg_crc.h"

#include <algorithm>

namespace Kor::MessageApi
{

namespace
{

constexpr uint32_t idBit = 32;
constexpr uint32_t crcBit = 16;
constexpr uint32_t lengthBit = 48;

/// Which of the optional fields are written.
enum class Fields {
    All,    ///< every field that the type began with, and the padding of the highest revision that
            ///< it began with in blocks of that revision; of what was added since, as AsRead
    AsRead, ///< what decoding reads for the record's revision
};

/// Whether a field that a revision brought in, or padding, is written. Content that a selector
/// chooses stays chosen in either mode.
bool isWritten(const TQX_TypeLayout& type, const TQX_FieldLayout& field, const void* record,
               Fields fields, unsigned revision, unsigned ownRevision)
{
    switch (field.presence) {
    case TQX_Presence::Always:
        return true;
    case TQX_Presence::Selected:
        return TQX_isPresent(type, field, record);
    case TQX_Presence::SinceRevision:
        return (fields == Fields::All && !field.isAddition) || field.alwaysSent ||
               revision >= field.presenceValue;
    case TQX_Presence::OnlyRevision:
        return revision == field.presenceValue &&
               (fields == Fields::AsRead || field.isAddition || revision == ownRevision);
    }
    return true;
}

// Sub-block arrays, and embedded sub-blocks with a length of their own, follow the bytes that the
// entry length of their owner covers.
bool standsBehindEntry(const TQX_FieldLayout& field)
{
    return field.kind == TQX_FieldKind::Blocks ||
           (field.kind == TQX_FieldKind::Embedded && field.length >= 0);
}

// Whether the sub-block inside an entry is one of several.
bool choosesContent(const TQX_TypeLayout& type)
{
    return std::any_of(type.fields, type.fields + type.fieldCount,
                       [](const TQX_FieldLayout& field) {
                           return field.kind == TQX_FieldKind::Embedded && field.length < 0;
                       });
}

// The code of the last scalar field.
int32_t lastScalarCode(const TQX_TypeLayout& type)
{
    for (int i = type.fieldCount - 1; i >= 0; --i) {
        if (type.fields[i].kind == TQX_FieldKind::Value)
            return type.fields[i].code;
    }
    return type.sizeUnderflow;
}

class Encoder
{
public:
    Encoder(const TQX_TypeLayout& mainType, unsigned char* buffer, uint16_t size, void* main,
            Fields fields)
        : m_mainType(mainType), m_buffer(buffer), m_size(size), m_main(main), m_fields(fields),
          m_revision(revisionOf(main))
    {
    }

    int32_t run();

private:
    bool fits(uint32_t bits) const { return uint64_t{m_cursor} + bits <= uint64_t{m_size} * 8; }
    bool forcesLengths() const
    {
        return m_revision <= 1 || m_revision <= m_mainType.highestRevision;
    }
    void forceLengths(const TQX_TypeLayout& type);
    int32_t writeRecord(const TQX_TypeLayout& type, void* record, uint32_t entryEnd = 0);
    int32_t writeEntry(const TQX_TypeLayout& owner, const TQX_FieldLayout& field, void* record,
                       uint32_t index);
    int32_t writeBlocks(const TQX_TypeLayout& type, const TQX_FieldLayout& field, void* record);
    int32_t writeArray(const TQX_TypeLayout& type, const TQX_FieldLayout& field, void* record);
    bool writeTail(const TQX_TypeLayout& type, const TQX_FieldLayout& field, void* record,
                   uint32_t index);
    void writeElement(const TQX_FieldLayout& field, void* record, uint32_t index, uint32_t bits);
    void writeUnit(uint64_t value, uint32_t bits);
    int32_t fillTo(const TQX_TypeLayout& type, uint32_t entryEnd);
    uint32_t entryBits(const TQX_TypeLayout& owner, const TQX_FieldLayout& field,
                       const void* record) const;
    void count(void* record, uint32_t bits);
    int32_t finish();

    const TQX_TypeLayout& m_mainType;
    unsigned char* m_buffer;
    uint16_t m_size;
    void* m_main;
    Fields m_fields;
    unsigned m_revision;
    uint32_t m_cursor = 0;
    int32_t m_pending = 0;
};

// The owner of a record that is only re-encoded expects it unchanged.
void Encoder::count(void* record, uint32_t bits)
{
    if (m_fields == Fields::All)
        addBits(record, bits);
}

// Fields are whole bytes at whole bytes, and callers have tested that they fit.
void Encoder::writeUnit(uint64_t value, uint32_t bits)
{
    uint8_t* const target = m_buffer + m_cursor / 8;
    for (uint32_t shift = 0; shift < bits; shift += 8)
        target[shift / 8] = static_cast<uint8_t>(value >> shift);
    m_cursor += bits;
}

// The ID goes out as the record holds it, but a record that was filled by its BlockNumber and
// Revision alone gets its ID from these.
uint16_t outgoingId(const void* main)
{
    const auto id = readMember<uint16_t>(main, offsetof(TQX_MainHeader_s, ID));
    const unsigned revision = revisionOf(main);
    if (id == 0) {
        const auto number = readMember<uint16_t>(main, offsetof(TQX_MainHeader_s, BlockNumber));
        return static_cast<uint16_t>(revision << 13U | number);
    }
    return revision == 0 ? id : static_cast<uint16_t>(TQX_blockNumberOf(id) | revision << 13U);
}

// A number of 1, 2, 4 or 8 bytes.
uint64_t storedBits(const void* member, uint32_t bits)
{
    switch (bits) {
    case 8:
        return readMember<uint8_t>(member, 0);
    case 16:
        return readMember<uint16_t>(member, 0);
    case 32:
        return readMember<uint32_t>(member, 0);
    default:
        return readMember<uint64_t>(member, 0);
    }
}

void Encoder::writeElement(const TQX_FieldLayout& field, void* record, uint32_t index,
                           uint32_t bits)
{
    const size_t place = field.recordOffset + size_t{index} * (bits / 8);
    // Not by the cursor: when the ID does not fit, a narrower field comes to its place.
    if (record == m_main && field.recordOffset == offsetof(TQX_MainHeader_s, ID)) {
        writeUnit(outgoingId(record), bits);
    } else {
        writeUnit(storedBits(static_cast<const uint8_t*>(record) + place, bits), bits);
    }
    count(record, bits);
}

bool Encoder::writeTail(const TQX_TypeLayout& type, const TQX_FieldLayout& field, void* record,
                        uint32_t index)
{
    const auto bytes = static_cast<uint32_t>(TQX_unsignedValue(type.fields[field.count], record));
    const uint32_t tail = bytes % TQX_elementSize(field);
    if (tail == 0)
        return true;
    const uint64_t value = TQX_unsignedValue(field, record, index);
    for (uint32_t i = 0; i < tail; ++i) {
        if (!fits(8))
            return false;
        writeUnit(value >> (8 * i) & 0xffU, 8);
        count(record, 8);
    }
    return true;
}

int32_t Encoder::writeArray(const TQX_TypeLayout& type, const TQX_FieldLayout& field, void* record)
{
    const bool counted = field.count >= 0;
    const uint32_t announced = counted ? countOf(type, field, record) : field.elements;
    const uint32_t room = std::min<uint32_t>(announced, field.elements);
    const uint32_t bits = TQX_elementSize(field) * 8;
    for (uint32_t i = 0; i < room; ++i) {
        if (!fits(bits)) {
            if (counted)
                return field.code;
            m_pending = field.code;
            return 0;
        }
        writeElement(field, record, i, bits);
    }
    if (announced > field.elements)
        return field.code - 1;
    if (field.countsBytes && !writeTail(type, field, record, room))
        return field.code;
    return 0;
}

// Every entry takes the length that its block states. When a decoded block is written back, what is
// shorter is padded; else only entries whose content, and so whose size, a selector chooses, and
// these only when the length is one that the encoder forces.
int32_t Encoder::fillTo(const TQX_TypeLayout& type, uint32_t entryEnd)
{
    const bool fills = m_fields == Fields::AsRead || (forcesLengths() && choosesContent(type));
    if (m_cursor >= entryEnd || !fills)
        return 0;
    if (!fits(entryEnd - m_cursor))
        return lastScalarCode(type);
    while (m_cursor < entryEnd)
        writeUnit(0, 8);
    return 0;
}

uint32_t Encoder::entryBits(const TQX_TypeLayout& owner, const TQX_FieldLayout& field,
                            const void* record) const
{
    if (field.length < 0)
        return 0;
    const uint64_t bytes = field.lengthInMain
                               ? TQX_unsignedValue(m_mainType.fields[field.length], m_main)
                               : TQX_unsignedValue(owner.fields[field.length], record);
    return static_cast<uint32_t>(bytes) * 8;
}

int32_t Encoder::writeEntry(const TQX_TypeLayout& owner, const TQX_FieldLayout& field, void* record,
                            uint32_t index)
{
    const uint32_t start = m_cursor;
    const int32_t result = writeRecord(*field.sub, TQX_element(field, record, index),
                                       start + entryBits(owner, field, record));
    if (result >= 0)
        count(record, m_cursor - start);
    return std::min(result, 0);
}

int32_t Encoder::writeBlocks(const TQX_TypeLayout& type, const TQX_FieldLayout& field, void* record)
{
    const uint32_t entries = countOf(type, field, record);
    KORCG_ASSERT(codecPath, entries == 0 || arrayOf(field, record) != nullptr,
                 "sub-block array != NULL");
    for (uint32_t i = 0; i < entries; ++i) {
        if (const int32_t result = writeEntry(type, field, record, i); result < 0)
            return result;
    }
    return 0;
}

int32_t Encoder::writeRecord(const TQX_TypeLayout& type, void* record, uint32_t entryEnd)
{
    for (int i = 0; i < type.fieldCount; ++i) {
        const TQX_FieldLayout& field = type.fields[i];
        if (field.kind == TQX_FieldKind::Bits || field.kind == TQX_FieldKind::Derived ||
            !isWritten(type, field, record, m_fields, m_revision, m_mainType.ownRevision))
            continue;
        if (field.kind == TQX_FieldKind::Value) {
            const uint32_t bits = TQX_elementSize(field) * 8;
            if (fits(bits)) {
                writeElement(field, record, 0, bits);
            } else {
                m_pending = field.code;
            }
            continue;
        }
        if (m_pending != 0)
            continue;
        int32_t result = 0;
        if (standsBehindEntry(field)) {
            result = fillTo(type, entryEnd);
            entryEnd = 0;
        }
        if (result < 0)
            return result;
        if (field.kind == TQX_FieldKind::Blocks) {
            result = writeBlocks(type, field, record);
        } else if (field.kind == TQX_FieldKind::Embedded) {
            result = writeEntry(type, field, record, 0);
        } else {
            result = writeArray(type, field, record);
        }
        if (result < 0)
            return result;
    }
    return m_pending != 0 ? m_pending : fillTo(type, entryEnd);
}

// Revisions 0 and 1 have fixed entry lengths; later ones let the record say them, and a record
// that says nothing gets the length that is written. Of revisions beyond the known ones nothing is
// forced.
void Encoder::forceLengths(const TQX_TypeLayout& type)
{
    if (!forcesLengths())
        return;
    for (int i = 0; i < type.fieldCount; ++i) {
        const TQX_FieldLayout& field = type.fields[i];
        if (field.kind != TQX_FieldKind::Blocks && field.kind != TQX_FieldKind::Embedded)
            continue;
        const TQX_TypeLayout& sub = *field.sub;
        if (field.length >= 0 && (field.lengthInMain || &type == &m_mainType)) {
            const TQX_FieldLayout& length = m_mainType.fields[field.length];
            if (m_revision <= 1 || TQX_unsignedValue(length, m_main) == 0)
                writeUnsigned(length, m_main, 0, fullEntrySize(sub, m_revision));
        }
        forceLengths(sub);
    }
}

int32_t Encoder::finish()
{
    const auto length = static_cast<uint16_t>((m_cursor + 7) / 8);
    const uint32_t end = m_cursor;
    korcg_write_u16(m_buffer, m_size, lengthBit, 16, length);
    uint16_t crc = 0;
    if (!korcg_crc16(m_buffer, m_size, idBit, end, 16, &crc))
        return m_mainType.crcChecksum;
    korcg_write_u16(m_buffer, m_size, crcBit, 16, crc);
    if (m_fields == Fields::All) {
        writeMember(m_main, offsetof(TQX_MainHeader_s, Length), length);
        writeMember(m_main, offsetof(TQX_MainHeader_s, CRC), crc);
    }
    return static_cast<int32_t>(end);
}

int32_t Encoder::run()
{
    if (m_fields == Fields::All)
        forceLengths(m_mainType);
    if (const int32_t result = writeRecord(m_mainType, m_main); result < 0)
        return result;
    return finish();
}

uint32_t entrySize(const TQX_TypeLayout& type, Fields fields, unsigned revision);

// The largest of the contents that one selecting field chooses from, the one in row `first` ahead.
uint32_t largestContent(const TQX_TypeLayout& type, int first, Fields fields, unsigned revision)
{
    uint32_t largest = 0;
    for (int i = 0; i < type.fieldCount; ++i) {
        const TQX_FieldLayout& field = type.fields[i];
        if (field.kind != TQX_FieldKind::Embedded || field.selector != type.fields[first].selector)
            continue;
        if (i < first)
            return 0;
        largest = std::max(largest, entrySize(*field.sub, fields, revision));
    }
    return largest;
}

uint32_t entrySize(const TQX_TypeLayout& type, Fields fields, unsigned revision)
{
    uint32_t bytes = 0;
    for (int i = 0; i < type.fieldCount; ++i) {
        const TQX_FieldLayout& field = type.fields[i];
        if (field.kind == TQX_FieldKind::Bits || field.kind == TQX_FieldKind::Derived ||
            field.count >= 0 || standsBehindEntry(field))
            continue;
        if (field.kind == TQX_FieldKind::Embedded) {
            bytes += largestContent(type, i, fields, revision);
        } else if (field.presence != TQX_Presence::Selected &&
                   isWritten(type, field, nullptr, fields, revision, type.ownRevision)) {
            bytes += TQX_elementSize(field) * field.elements;
        }
    }
    return bytes;
}

} // namespace

uint32_t fullEntrySize(const TQX_TypeLayout& type, unsigned revision)
{
    return entrySize(type, Fields::All, revision);
}

int32_t encodeRecord(const TQX_TypeLayout& type, unsigned char* buffer, uint16_t bufferSize,
                     void* record)
{
    return Encoder(type, buffer, bufferSize, record, Fields::All).run();
}

int32_t TQX_reencodeAs(const TQX_TypeLayout& type, unsigned char* buffer, uint16_t bufferSize,
                       const void* record)
{
    return Encoder(type, buffer, bufferSize, const_cast<void*>(record), Fields::AsRead).run();
}

uint32_t TQX_entrySizeOf(const TQX_TypeLayout& type, unsigned revision)
{
    return entrySize(type, Fields::AsRead, revision);
}

} // namespace Kor::MessageApi

using namespace Kor::MessageApi;

int32_t TQX_reencode(unsigned char* buffer, uint16_t bufferSize, const void* record)
{
    const TQX_TypeLayout* type = TQX_layout(recordTypeOf(record));
    if (type == nullptr || type->blockNumber == 0)
        return TQX_invalidMessage;
    return TQX_reencodeAs(*type, buffer, bufferSize, record);
}

uint32_t TQX_entrySize(uint32_t recordType, unsigned revision)
{
    const TQX_TypeLayout* type = TQX_layout(recordType);
    return type == nullptr ? 0 : TQX_entrySizeOf(*type, revision);
}
