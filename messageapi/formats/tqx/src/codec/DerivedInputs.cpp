#include "TQX_DerivedInputs.h"

#include "FactTables.h"

#include <algorithm>
#include <utility>

namespace Kor::MessageApi
{

namespace
{

using Field = std::pair<uint32_t, uint32_t>;

Field fieldOf(const TQX_DerivedInput& input)
{
    return {input.recordType, input.row};
}

struct Before {
    bool operator()(const TQX_DerivedInput& input, const Field& field) const
    {
        return fieldOf(input) < field;
    }
    bool operator()(const Field& field, const TQX_DerivedInput& input) const
    {
        return field < fieldOf(input);
    }
};

} // namespace

TQX_DerivedInputs TQX_derivedInputs(uint32_t recordType, uint32_t row)
{
    const auto [first, last] =
        std::equal_range(Facts::derivedInputs, Facts::derivedInputs + Facts::derivedInputCount,
                         Field(recordType, row), Before());
    return {first, last};
}

} // namespace Kor::MessageApi
