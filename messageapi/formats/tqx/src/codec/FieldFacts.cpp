#include "FactTables.h"

namespace Kor::MessageApi
{

static_assert(sizeof(TQX_FieldFacts) <= 24, "there are thousands of rows");

TQX_NamedValue TQX_NamedValues::operator[](unsigned index) const
{
    const Facts::NamedRow& row = Facts::namedRows[m_first + index];
    return {row.value, Facts::texts + row.name};
}

std::string_view TQX_unit(const TQX_FieldFacts& field)
{
    return Facts::texts + field.unit;
}

double TQX_scale(const TQX_FieldFacts& field)
{
    return Facts::reals[field.scale];
}

uint64_t TQX_doNotUse(const TQX_FieldFacts& field)
{
    return Facts::integers[field.doNotUse];
}

double TQX_realDoNotUse(const TQX_FieldFacts& field)
{
    return Facts::reals[field.realDoNotUse];
}

TQX_NamedValues TQX_namedValues(const TQX_FieldFacts& field)
{
    const Facts::NamedRun& run = Facts::namedRuns[field.namedValues];
    return {run.first, run.count};
}

unsigned TQX_namedValueTables()
{
    return Facts::namedRunCount;
}

std::string_view TQX_description(const TQX_TypeFacts& type)
{
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
