#include "TQX_FieldAccess.h"

#include "TQX_MessageErrors.h"
#include "TQX_RecordAccess.h"

#include "Message.h"

#include <algorithm>
#include <cstring>
#include <string>

using namespace Kor::MessageApi;

namespace
{

/// Message lends the record of any message to its descendants only.
struct RecordReader : Message {
    static const void* record(const Message& message)
    {
        return (message.*&RecordReader::getRawRepresentationOf)(&message);
    }
};

template<typename T>
T load(const TQX_FieldLayout& field, const void* record, unsigned index)
{
    T value;
    std::memcpy(&value, TQX_element(field, record, index), sizeof value);
    return value;
}

} // namespace

const void* TQX_FieldAccess::rawRecord(const Message& message)
{
    return RecordReader::record(message);
}

const void* TQX_FieldAccess::record(const Message& message, const TQX_TypeLayout& type)
{
    const void* record = rawRecord(message);
    if (!record)
        TQX_failUninitialized(("TQX_" + std::string(type.name) + "_Message").c_str());
    return record;
}

unsigned TQX_FieldAccess::readableElements(const TQX_TypeLayout& type, const TQX_FieldLayout& field,
                                           const void* record)
{
    const unsigned count = TQX_elementCount(type, field, record);
    if (field.kind == TQX_FieldKind::Blocks)
        return count;
    const unsigned room = field.elements + (field.type == TQX_MemberType::Char ? 1U : 0U);
    return std::min(count, room);
}

FieldValue TQX_FieldAccess::value(const TQX_FieldLayout& field, const void* record, unsigned index)
{
    switch (field.type) {
    case TQX_MemberType::F32:
        return FieldValue::f32(load<float>(field, record, index));
    case TQX_MemberType::F64:
        return FieldValue::f64(load<double>(field, record, index));
    case TQX_MemberType::Char:
        return FieldValue::ch(load<char>(field, record, index));
    case TQX_MemberType::I8:
    case TQX_MemberType::I16:
    case TQX_MemberType::I32:
        return FieldValue::i(TQX_signedValue(field, record, index), field.width);
    default:
        return FieldValue::u(TQX_unsignedValue(field, record, index), field.width);
    }
}

double TQX_FieldAccess::real(const TQX_FieldLayout& field, const void* record, unsigned index)
{
    if (field.type == TQX_MemberType::F32)
        return static_cast<double>(load<float>(field, record, index));
    return load<double>(field, record, index);
}
