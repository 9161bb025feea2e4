#pragma once

#include "ExactDecoder.h"
#include "RecordMembers.h"
#include "TQX_Context.h"
#include "TQX_Format.h"
#include "korcg_load.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

/// Building blocks of the generated straight-line decoders.
namespace Kor::MessageApi
{

/// Zeroes the members of a record from byte `from` up to byte `to`.
template<typename Record>
void clearMembers(Record& record, size_t from, size_t to)
{
    std::memset(static_cast<uint8_t*>(static_cast<void*>(&record)) + from, 0, to - from);
}

/// Zeroes the first `count` elements of an array, or all if there are fewer.
template<typename Element, size_t size>
void clearElements(Element (&array)[size], size_t count)
{
    std::memset(array, 0, std::min(count, size) * sizeof(Element));
}

/// Whether `bytes` bytes from bit offset `bit` on lie inside the buffer; the offset must be a
/// whole byte.
inline bool isInside(uint16_t size, uint32_t bit, uint64_t bytes)
{
    return bit % 8 == 0 && bit / 8 + bytes <= size;
}

/// Value of the `width` bits of a packed word that start at bit `shift`, sign-extended.
constexpr int32_t signedBits(uint32_t word, unsigned shift, unsigned width)
{
    const uint32_t value = word >> shift & ~uint32_t{0} >> (32U - width);
    const uint32_t sign = uint32_t{1} << (width - 1U);
    return static_cast<int32_t>((value ^ sign) - sign);
}

/// Loads the header fields of a main block.
template<typename Record>
void loadHeader(const uint8_t* at, Record& record)
{
    record.Sync1 = static_cast<char>(at[0]);
    record.Sync2 = static_cast<char>(at[1]);
    record.CRC = korcg_load_u16(at + 2);
    record.ID = korcg_load_u16(at + 4);
    record.BlockNumber = TQX_blockNumberOf(record.ID);
    record.Revision = TQX_revisionOf(record.ID);
    record.Length = korcg_load_u16(at + 6);
    record.TOW = korcg_load_u32(at + 8);
    record.WNc = korcg_load_u16(at + 12);
}

/// The parent of a sub-record when it is of the given type, else null.
template<typename Owner>
const Owner* fatherAs(const void* father, uint32_t recordType)
{
    return father != nullptr && recordTypeOf(father) == recordType
               ? static_cast<const Owner*>(father)
               : nullptr;
}

/// Room for the entries of a sub-block array; the caller fills every one of them.
template<typename Entry>
Entry* allocateEntries(size_t count)
{
    return static_cast<Entry*>(std::malloc(count * sizeof(Entry)));
}

/// Room for `count` entries and after them `nested` entries of their own arrays.
template<typename Entry, typename Nested>
Entry* allocateEntries(size_t count, size_t nested)
{
    static_assert(sizeof(Entry) % alignof(Nested) == 0, "nested entries follow without a gap");
    return static_cast<Entry*>(std::malloc(count * sizeof(Entry) + nested * sizeof(Nested)));
}

/// Where the nested entries start in such a room.
template<typename Nested, typename Entry>
Nested* nestedEntries(Entry* entries, size_t count)
{
    return static_cast<Nested*>(static_cast<void*>(entries + count));
}

/// Bytes that one entry takes on the wire: the stated length, or what is known of it.
inline uint32_t entryBytes(uint32_t stated, uint32_t known)
{
    return stated != 0 ? stated : known;
}

} // namespace Kor::MessageApi
