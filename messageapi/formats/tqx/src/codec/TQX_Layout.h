#pragma once

#include "TQX_Edition.h"
#include "tqx_codec_export.h"

#include <cstdint>

namespace Kor::MessageApi
{

/// How a field relates to the wire and to the record.
enum class TQX_FieldKind : uint8_t {
    Value,        ///< one number or character with a place of its own on the wire
    Bits,         ///< a bit range of the packed field `parent`, kept as a member of its own
    Derived,      ///< computed by the decoder from other fields; not on the wire
    Array,        ///< `elements` numbers
    CountedArray, ///< as many numbers as the field `count` says, at most `elements`
    Text,         ///< `elements` characters; the record adds a terminating zero
    CountedText,  ///< as many characters as `count` says, at most `elements`, then a zero
    Blocks,       ///< a sub-block array; the member is a pointer, the length is in `count`
    Embedded,     ///< one sub-block inside the record, decoded when its selector matches
};

/// Type of one element of a record member.
enum class TQX_MemberType : uint8_t { U8, I8, U16, I16, U32, I32, U64, F32, F64, Char, Record };

/// When a field is present.
enum class TQX_Presence : uint8_t {
    Always,
    SinceRevision, ///< the main block's Revision is at least `presenceValue`
    OnlyRevision,  ///< the main block's Revision equals `presenceValue`
    Selected,      ///< the field `selector` of the same record equals `presenceValue`
};

/// How a bit range sums up others of the same word, instead of having bits of its own.
enum class TQX_Summary : uint8_t {
    None,
    Any,     ///< 1 when one of them is not 0
    All,     ///< 1 when each of them is not 0
    Neither, ///< 1 when each of them is 0
    Least,   ///< the smallest of them
};

struct TQX_TypeLayout;
struct TQX_DescribedType;

/// One field of a record type: the facts that the table-driven engines, the tool and the field
/// metadata share. Rows are in the order of the field list, which is wire order.
struct TQX_FieldLayout {
    const char* name;       ///< display name, may contain blanks
    const char* meaning;    ///< explanation where the name does not say it, else ""
    int32_t code;           ///< EXT_BUFFER_OVERFLOW code, 0 for fields without one; a counted
                            ///< field's INT_BUFFER_OVERFLOW code is one lower
    uint32_t recordOffset;  ///< bytes from the start of the record to the member
    int32_t wireOffset;     ///< bytes from the start of the block or entry, -1 when not constant
    uint16_t recordType;    ///< Blocks, Embedded: record type of the sub-block, else 0
    uint16_t elements;      ///< elements or capacity; 1 for single values
    uint16_t presenceValue; ///< revision or selecting value, see `presence`
    int16_t parent;         ///< Bits: row of the packed field, else -1
    int16_t selector;       ///< Selected: row of the selecting field, else -1
    int16_t count;          ///< counted fields and Blocks: row of the count field, else -1
    int16_t length;         ///< Blocks, Embedded: row of the entry length field, -1 for none
    TQX_FieldKind kind;
    TQX_MemberType type;
    TQX_Presence presence;
    uint8_t width;                 ///< bits of one element's value
    uint8_t shift;                 ///< Bits: lowest bit within the parent
    bool lengthInMain;             ///< `length` is a row of the main block, not of this type
    bool alwaysSent;               ///< on the wire even when `presence` says that it is absent
    bool countsBytes;              ///< `count` holds bytes, not elements
    bool isPadding;                ///< padding, named "_padding<k>"
    uint8_t edition;               ///< of the format, that brought the field; 255: others added it
    bool isAddition;               ///< on the wire since a later edition than that of the type: in
                                   // /< only in blocks of its revisions, whatever wrote them
    TQX_Summary summary;           ///< Bits: how the value comes from others of the word
    uint32_t summed;               ///< ... from which: bit k is the k-th row after the word
    void (*derive)(void* record);  ///< computes what derives from this field once it is read
    void* (*append)(void* record); ///< Blocks: adds an element to the array, else null
    const TQX_TypeLayout* sub;     ///< Blocks, Embedded: layout of the sub-block, else null
};

/// One record type, built or read from a description at run time (TQX_DescribedType.h). The latter
/// has none of the functions, neither here nor in its fields: those of TQX_LayoutFunctions.h do for
/// both what they do.
struct TQX_TypeLayout {
    const char* name;
    const TQX_FieldLayout* fields;
    uint16_t fieldCount;
    uint16_t firstSubBlock;    ///< row of the first sub-block field, fieldCount when there is none
    uint16_t recordType;       ///< record-type number, 1 to TQX_lastRecordType; of a described type
                               ///< TQX_firstDescribedType or above
    uint16_t blockNumber;      ///< 13-bit block number; 0 for a sub-block
    uint8_t linksToMain;       ///< parent links from this record up to its main block, 0 for a main
    uint8_t highestRevision;   ///< last revision that changed the layout
    uint8_t ownRevision;       ///< likewise, by the fields that the type had in its first edition
    uint8_t edition;           ///< of the format, that brought the type
    bool hasMessage;           ///< whether a message class exists
    uint32_t recordSize;       ///< sizeof the record
    int32_t sizeUnderflow;     ///< SIZE_UNDERFLOW code
    int32_t internal;          ///< INTERNAL code
    int32_t crcChecksum;       ///< CRC_CHECKSUM code; 0 for a sub-block
    int32_t disabled;          ///< DISABLED code; 0 for a sub-block
    const char* kindAssertion; ///< text of the assertion on the main block's kind, or null
    const uint16_t* kindTypes; ///< record types it accepts, ended by 0
    int (*init)(void* record);
    int (*encode)(unsigned char* buffer, unsigned short bufferSize, void* record); ///< main only
    void (*release)(void* record);
    const TQX_DescribedType* described; ///< null for built-in types
};

/// Record types from here on are those of descriptions, each valid within its schema.
constexpr uint32_t TQX_firstDescribedType = 32768;

/// Codes of described types go down from here.
constexpr int32_t TQX_firstDescribedCode = -100000;

} // namespace Kor::MessageApi

extern "C" {

/// Layout of a record type (1 to TQX_lastRecordType), or null when there is no such type.
TQX_CODEC_API const Kor::MessageApi::TQX_TypeLayout* TQX_layout(uint32_t recordType);

/// Record type of a block number, or 0 when no main block has it.
TQX_CODEC_API uint32_t TQX_recordType(uint16_t blockNumber);
}

namespace Kor::MessageApi
{

/// Value of a bit range of a packed word, not sign-extended. `parts` are the rows after that of the
/// word.
inline uint64_t TQX_bitsOf(const TQX_FieldLayout* parts, const TQX_FieldLayout& part, uint64_t word)
{
    if (part.summary == TQX_Summary::None)
        return word >> part.shift & ~uint64_t{0} >> (64 - part.width);
    bool any = false;
    bool all = true;
    uint64_t least = ~uint64_t{0};
    for (uint32_t left = part.summed; left != 0; left >>= 1U, ++parts) {
        if ((left & 1U) == 0)
            continue;
        const uint64_t value = word >> parts->shift & ~uint64_t{0} >> (64 - parts->width);
        any = any || value != 0;
        all = all && value != 0;
        least = value < least ? value : least;
    }
    switch (part.summary) {
    case TQX_Summary::Any:
        return any;
    case TQX_Summary::All:
        return all;
    case TQX_Summary::Neither:
        return !any;
    default:
        return least;
    }
}

} // namespace Kor::MessageApi
