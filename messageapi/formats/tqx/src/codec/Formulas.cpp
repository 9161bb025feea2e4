#include "Formulas.h"

#include "DerivedValues.h"

#include <cstring>
#include <utility>

namespace Kor::MessageApi
{

namespace
{

template<auto function>
struct Call;

template<typename Result, typename... Parameters, Result (*function)(Parameters...)>
struct Call<function> {
    static constexpr unsigned arguments = sizeof...(Parameters);
    static_assert(arguments <= mostArguments);

    template<size_t... indices>
    static Argument compute(const Argument* values, std::index_sequence<indices...>)
    {
        const Result result = function(values[indices].template as<Parameters>()...);
        if constexpr (std::is_floating_point_v<Result>) {
            return Argument::ofReal(static_cast<double>(result));
        } else {
            return Argument::ofWhole(static_cast<uint64_t>(result), std::is_signed_v<Result>);
        }
    }

    static Argument compute(const Argument* values)
    {
        return compute(values, std::index_sequence_for<Parameters...>{});
    }
};

template<auto function>
constexpr TQX_Formula formula(const char* name)
{
    return {name, Call<function>::arguments, Call<function>::compute};
}

using namespace Derived;

constexpr TQX_Formula formulas[] = {
    formula<&signalNumber>("signalNumber"),
    formula<&carrierFrequency>("carrierFrequency"),
    formula<&carrierWavelength>("carrierWavelength"),
    formula<&carrierToNoise>("carrierToNoise"),
    formula<&dopplerHertz>("dopplerHertz"),
    formula<&joinOffset>("joinOffset"),
    formula<&codeRange>("codeRange"),
    formula<&carrierPhase>("carrierPhase"),
    formula<&codeRangeOffset>("codeRangeOffset"),
    formula<&dopplerOffsetHertz>("dopplerOffsetHertz"),
    formula<&standardDeviation>("standardDeviation"),
    formula<&horizontalAccuracy>("horizontalAccuracy"),
    formula<&verticalAccuracy>("verticalAccuracy"),
    formula<&spatialDeviation>("spatialDeviation"),
    formula<&spatialAccuracy>("spatialAccuracy"),
    formula<&length2>("length2"),
    formula<&length3>("length3"),
    formula<&joinWords>("joinWords"),
    formula<&wordCount>("wordCount"),
};

} // namespace

const TQX_Formula* TQX_findFormula(const char* name)
{
    for (const TQX_Formula& each : formulas) {
        if (std::strcmp(each.name, name) == 0)
            return &each;
    }
    return nullptr;
}

unsigned TQX_argumentCount(const TQX_Formula& formula)
{
    return formula.arguments;
}

} // namespace Kor::MessageApi
