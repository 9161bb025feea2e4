#pragma once

#include "tqx_export.h"

#include <cstdint>

class Message;
class MessageInfo;
class TQX_FieldInfo;

/// What only the metadata know about one field. Where it is in a record is in the layout row of the
/// same position, what its values mean in the row of facts.
struct TQX_FieldRow {
    const char* className;                  ///< "TQX_AGCState_Gain_FieldInfo"
    TQX_FieldInfo* (*instance)();           ///< the field's singleton
    const MessageInfo* (*subMessageInfo)(); ///< sub-block fields: metadata of the sub-block
    /// Sub-block fields: child `index` out of the typed cache of a message of the owning type.
    const Message* (*subMessage)(const Message& owner, unsigned index);
};

/// What only the metadata know about one message type.
struct TQX_TypeRow {
    const char* className;               ///< "TQX_AGCState_MessageInfo"
    const MessageInfo* (*messageInfo)(); ///< the type's singleton
    const TQX_FieldRow* fields;          ///< parallel to TQX_layout(recordType)->fields
    uint16_t recordType;
};

/// Row of a record type (1 to TQX_lastRecordType), null for types without message class.
TQX_API const TQX_TypeRow* TQX_typeRow(uint32_t recordType);

/// Field rows of a record type, as many as TQX_layout(recordType)->fieldCount; null for types
/// without message class.
inline const TQX_FieldRow* TQX_fieldRows(uint32_t recordType)
{
    const TQX_TypeRow* type = TQX_typeRow(recordType);
    return type ? type->fields : nullptr;
}
