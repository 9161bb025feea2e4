#pragma once

#include "TQX_FieldRow.h"
#include "TQX_Layout.h"

#include "FieldValue.h"

class Message;

/// Reads the records of messages. The only place in the metadata that knows where a message keeps
/// its record.
class TQX_FieldAccess
{
public:
    /// Record of a message of this format, null when the message has none.
    static const void* rawRecord(const Message& message);

    /// Record of a message of the given type. Ends the process through qFatal, as the getters of
    /// the message do, when the message has none.
    static const void* record(const Message& message, const Kor::MessageApi::TQX_TypeLayout& type);

    /// Number of elements that can be read: the element count, but never more than the record
    /// has room for.
    static unsigned readableElements(const Kor::MessageApi::TQX_TypeLayout& type,
                                     const Kor::MessageApi::TQX_FieldLayout& field,
                                     const void* record);

    /// Element `index` of a number or character field as a value of the field's type and width.
    /// `index` must be below readableElements().
    static FieldValue value(const Kor::MessageApi::TQX_FieldLayout& field, const void* record,
                            unsigned index);

    /// Element `index` of an f32 or f64 field.
    static double real(const Kor::MessageApi::TQX_FieldLayout& field, const void* record,
                       unsigned index);
};
