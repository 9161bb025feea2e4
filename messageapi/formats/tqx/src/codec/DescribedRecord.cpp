#include "DescribedRecord.h"

#include "Formulas.h"
#include "RecordMembers.h"
#include "TQX_LayoutFunctions.h"

#include <cstring>

namespace Kor::MessageApi
{

namespace
{

Argument argumentOf(const TQX_FieldLayout& field, const void* record)
{
    const void* member = TQX_element(field, record);
    if (field.type == TQX_MemberType::F32)
        return Argument::ofReal(static_cast<double>(readMember<float>(member, 0)));
    if (field.type == TQX_MemberType::F64)
        return Argument::ofReal(readMember<double>(member, 0));
    return Argument::ofWhole(TQX_isSigned(field)
                                 ? static_cast<uint64_t>(TQX_signedValue(field, record))
                                 : TQX_unsignedValue(field, record),
                             TQX_isSigned(field));
}

void store(const TQX_FieldLayout& field, void* record, const Argument& value)
{
    if (field.type == TQX_MemberType::F32) {
        writeMember(record, field.recordOffset, value.as<float>());
    } else if (field.type == TQX_MemberType::F64) {
        writeMember(record, field.recordOffset, value.as<double>());
    } else {
        writeUnsigned(field, record, 0, value.asBits());
    }
}

void derive(const TQX_TypeLayout& type, const TQX_Derivation& derivation, void* record)
{
    Argument arguments[mostArguments];
    const unsigned count = TQX_argumentCount(*derivation.formula);
    for (unsigned i = 0; i < count; ++i) {
        const TQX_FieldInput& input = derivation.inputs[i];
        const void* holder = record;
        for (unsigned link = 0; link < input.linksUp; ++link)
            holder = fatherOf(holder);
        const TQX_TypeLayout& layout = input.linksUp == 0 ? type : layoutOf(type, holder);
        arguments[i] = argumentOf(layout.fields[input.row], holder);
    }
    store(type.fields[derivation.row], record, derivation.formula->compute(arguments));
}

void start(const TQX_TypeLayout& type, void* record)
{
    const TQX_DescribedType& described = *type.described;
    for (unsigned i = 0; i < described.startCount; ++i) {
        const TQX_StartingValue& value = described.starts[i];
        store(type.fields[value.row], record, Argument::ofReal(value.value));
    }
}

void initDescribed(const TQX_TypeLayout& type, void* record)
{
    std::memset(record, 0, type.recordSize);
    writeMember<uint32_t>(record, offsetof(KorcgHeader_s, korcg_type), type.recordType);
    if (type.blockNumber != 0) {
        writeMember(record, offsetof(TQX_MainHeader_s, Sync1), '$');
        writeMember(record, offsetof(TQX_MainHeader_s, Sync2), '@');
        writeMember(record, offsetof(TQX_MainHeader_s, BlockNumber), type.blockNumber);
    }
    for (int i = 0; i < type.fieldCount; ++i) {
        const TQX_FieldLayout& field = type.fields[i];
        if (field.kind == TQX_FieldKind::Text)
            std::memset(TQX_element(field, record), ' ', field.elements);
        if (field.kind == TQX_FieldKind::Embedded)
            TQX_initRecord(*field.sub, TQX_element(field, record));
    }
    start(type, record);
}

} // namespace

void TQX_initRecord(const TQX_TypeLayout& type, void* record)
{
    if (type.described != nullptr) {
        initDescribed(type, record);
    } else {
        type.init(record);
    }
}

void deriveAfter(const TQX_TypeLayout& type, const TQX_FieldLayout& field, void* record)
{
    const auto row = static_cast<uint16_t>(&field - type.fields);
    const TQX_DescribedType& described = *type.described;
    for (unsigned i = 0; i < described.derivationCount; ++i) {
        if (described.derivations[i].after == row)
            derive(type, described.derivations[i], record);
    }
}

} // namespace Kor::MessageApi
