#pragma once

#include "TQX_Layout.h"
#include "tqx_export.h"

#include <cstdint>

class Message;
class MessageInfo;
class TQX_FieldInfo;
class TQX_SymbolNames;

/// Constant facts of one field that only the metadata knows. What the codec knows as well (name,
/// type, width, presence, counts) stands in the layout row of the same position.
struct TQX_FieldRow {
    enum Flag : uint16_t {
        Optional = 1,       ///< setIsOptional(true)
        Repeated = 2,       ///< setIsRepeated(true)
        Virtual = 4,        ///< setVirtual(true)
        BitMask = 8,        ///< representation mode 1
        Identifying = 16,   ///< tells one message of the type from another (addFieldInfo)
        HasDoNotUse = 32,   ///< `doNotUse` or `realDoNotUse` means "not available"
        NamesDoNotUse = 64, ///< the do-not-use value is also a named value, "DoNotUse"
    };

    const char* className;                  ///< "TQX_AGCState_Gain_FieldInfo"
    TQX_FieldInfo* (*instance)();           ///< the field's singleton
    const MessageInfo* (*subMessageInfo)(); ///< sub-block fields: metadata of the sub-block
    /// Sub-block fields: child `index` out of the typed cache of a message of the owning type.
    const Message* (*subMessage)(const Message& owner, unsigned index);
    const TQX_SymbolNames& (*symbols)(); ///< named values, null for none
    const char* unit;                    ///< unit word, null for none
    double scale;                        ///< scale factor, 0 when none is set
    uint64_t doNotUse;   ///< do-not-use value of an integer field, two's complement when signed
    double realDoNotUse; ///< do-not-use value of a floating-point field; exact for f32 as well
    int8_t precision;    ///< decimals, -1 when none is set
    uint8_t role;        ///< FieldInfo::Role
    uint8_t subFields;   ///< how many rows are bit ranges of this one
    uint16_t flags;      ///< combination of Flag

    constexpr bool has(Flag flag) const { return (flags & flag) != 0; }

    /// Whether an integer (sign-extended and cast when signed) is the do-not-use value.
    constexpr bool isDoNotUse(uint64_t value) const
    {
        return has(HasDoNotUse) && value == doNotUse;
    }

    /// Likewise for a floating-point value.
    constexpr bool isRealDoNotUse(double value) const
    {
        return has(HasDoNotUse) && value == realDoNotUse;
    }
};

/// Constant facts of one message type.
struct TQX_TypeRow {
    const char* className;               ///< "TQX_AGCState_MessageInfo"
    const MessageInfo* (*messageInfo)(); ///< the type's singleton
    const TQX_FieldRow* fields;          ///< parallel to TQX_layout(recordType)->fields
    const char* description;             ///< one-line description, null for none
    uint16_t recordType;
    uint8_t version; ///< generation of the block; this and the rest are for main blocks only
    bool flexrate;
    bool esoc;
    char timestamp; ///< 'R', 'S' or 'E'
};

/// Row of a record type (1 to 382), null for types without message class.
TQX_API const TQX_TypeRow* TQX_typeRow(uint32_t recordType);

/// Field rows of a record type, as many as TQX_layout(recordType)->fieldCount; null for types
/// without message class.
inline const TQX_FieldRow* TQX_fieldRows(uint32_t recordType)
{
    const TQX_TypeRow* type = TQX_typeRow(recordType);
    return type ? type->fields : nullptr;
}
