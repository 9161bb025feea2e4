#include "FactTables.h"

#include "RecordMembers.h"
#include "TQX_DescribedType.h"

#include <cstring>

namespace Kor::MessageApi
{

static_assert(sizeof(TQX_FieldFacts) <= 24, "there are thousands of rows");

namespace
{

double realOf(const TQX_FieldLayout& field, const void* record)
{
    const void* member = TQX_element(field, record);
    if (field.type == TQX_MemberType::F32) {
        float value = 0;
        std::memcpy(&value, member, sizeof value);
        return static_cast<double>(value);
    }
    double value = 0;
    std::memcpy(&value, member, sizeof value);
    return value;
}

// Null for a built-in type.
const TQX_DescribedFacts* describedFacts(const TQX_FieldFacts& field)
{
    return field.has(TQX_FieldFacts::Described) ? static_cast<const TQX_DescribedFacts*>(&field)
                                                : nullptr;
}

bool isAvailable(const TQX_FieldFacts& derived, const TQX_FieldInput& input, const void* record)
{
    for (unsigned i = 0; record != nullptr && i < input.linksUp; ++i)
        record = static_cast<const KorcgHeader_s*>(record)->korcg_father;
    if (record == nullptr)
        return false;
    const TQX_DescribedFacts* described = describedFacts(derived);
    const TQX_TypeLayout& type =
        described ? layoutOf(*described->type, record) : *TQX_layout(recordTypeOf(record));
    const TQX_FieldLayout& field = type.fields[input.row];
    const TQX_FieldFacts& facts = TQX_factsOf(type, input.row);
    if (field.type == TQX_MemberType::F32 || field.type == TQX_MemberType::F64)
        return !TQX_isRealDoNotUse(facts, realOf(field, record));
    return !TQX_isDoNotUse(facts, TQX_isSigned(field)
                                      ? static_cast<uint64_t>(TQX_signedValue(field, record))
                                      : TQX_unsignedValue(field, record));
}

} // namespace

TQX_NamedValue TQX_NamedValues::operator[](unsigned index) const
{
    if (m_values)
        return m_values[index];
    const Facts::NamedRow& row = Facts::namedRows[m_first + index];
    return {row.value, Facts::texts + row.name};
}

std::string_view TQX_unit(const TQX_FieldFacts& field)
{
    if (const TQX_DescribedFacts* described = describedFacts(field))
        return described->unitWord;
    return Facts::texts + field.unit;
}

std::string_view TQX_unitSymbol(std::string_view unit)
{
    for (uint32_t i = 0; i < Facts::unitCount; ++i) {
        if (Facts::texts + Facts::units[i].word == unit)
            return Facts::texts + Facts::units[i].symbol;
    }
    return {};
}

double TQX_scale(const TQX_FieldFacts& field)
{
    if (const TQX_DescribedFacts* described = describedFacts(field))
        return described->scaleFactor;
    return Facts::reals[field.scale];
}

uint64_t TQX_doNotUse(const TQX_FieldFacts& field)
{
    if (const TQX_DescribedFacts* described = describedFacts(field))
        return described->integerDoNotUse;
    return Facts::integers[field.doNotUse];
}

double TQX_realDoNotUse(const TQX_FieldFacts& field)
{
    if (const TQX_DescribedFacts* described = describedFacts(field))
        return described->realValueDoNotUse;
    return Facts::reals[field.realDoNotUse];
}

TQX_NamedValues TQX_namedValues(const TQX_FieldFacts& field)
{
    if (const TQX_DescribedFacts* described = describedFacts(field))
        return {described->names, described->nameCount};
    const Facts::NamedRun& run = Facts::namedRuns[field.namedValues];
    return {run.first, run.count};
}

TQX_FieldInputs TQX_inputs(const TQX_FieldFacts& field)
{
    if (const TQX_DescribedFacts* described = describedFacts(field))
        return {described->inputRows, field.inputCount};
    return {Facts::inputs + field.inputs, field.inputCount};
}

bool TQX_hasInputs(const TQX_FieldFacts& field, const void* record)
{
    for (const TQX_FieldInput& input : TQX_inputs(field)) {
        if (!isAvailable(field, input, record))
            return false;
    }
    return true;
}

unsigned TQX_namedValueTables()
{
    return Facts::namedRunCount;
}

TQX_NamedValues TQX_namedValueTable(unsigned index)
{
    const Facts::NamedRun& run = Facts::namedRuns[index];
    return {run.first, run.count};
}

std::string_view TQX_namedValueTableName(unsigned index)
{
    return Facts::texts + Facts::namedRuns[index].name;
}

unsigned TQX_unitCount()
{
    return Facts::unitCount;
}

std::string_view TQX_unitWord(unsigned index)
{
    return Facts::texts + Facts::units[index].word;
}

const TQX_TypeFacts& TQX_factsOf(const TQX_TypeLayout& type)
{
    return type.described ? type.described->facts : *TQX_typeFacts(type.recordType);
}

const TQX_FieldFacts& TQX_factsOf(const TQX_TypeLayout& type, int row)
{
    return type.described ? type.described->fields[row] : TQX_fieldFacts(type.recordType)[row];
}

std::string_view TQX_description(const TQX_TypeFacts& type)
{
    if (type.description == TQX_DescribedTypeFacts::ownDescription)
        return static_cast<const TQX_DescribedTypeFacts&>(type).text;
    return Facts::texts + type.description;
}

} // namespace Kor::MessageApi

using namespace Kor::MessageApi;

const TQX_TypeFacts* TQX_typeFacts(uint32_t recordType)
{
    if (recordType >= Facts::typeCount || Facts::types[recordType].firstField == Facts::noType)
        return nullptr;
    return Facts::types + recordType;
}

const TQX_FieldFacts* TQX_fieldFacts(uint32_t recordType)
{
    const TQX_TypeFacts* type = TQX_typeFacts(recordType);
    return type ? Facts::fields + type->firstField : nullptr;
}
