#pragma once

#include "TQX_FieldFacts.h"
#include "TQX_Layout.h"

#include <cstdint>

/// Additional data of types read from a description at run time. Built-in types have generated code
/// and tables instead. All memory belongs to the maker of the layouts, and outlives their records.
namespace Kor::MessageApi
{

/// Facts of a field of a described type: values where those of built-in types have indices.
struct TQX_DescribedFacts : TQX_FieldFacts {
    const TQX_TypeLayout* type = nullptr; ///< that the field is of
    const char* unitWord = "";
    double scaleFactor = 0;
    uint64_t integerDoNotUse = 0;
    double realValueDoNotUse = 0;
    const TQX_NamedValue* names = nullptr;
    uint32_t nameCount = 0;
    const TQX_FieldInput* inputRows = nullptr; ///< `inputCount` of them
};

/// Facts of a described type.
struct TQX_DescribedTypeFacts : TQX_TypeFacts {
    /// TQX_TypeFacts::description of such a type.
    static constexpr uint16_t ownDescription = UINT16_MAX;

    const char* text = "";
};

struct TQX_Formula;

/// A derived value: the formula that computes it and where its arguments are.
struct TQX_Derivation {
    uint16_t row;   ///< of the derived field
    uint16_t after; ///< row of the field after which all arguments are known
    const TQX_Formula* formula;
    const TQX_FieldInput* inputs; ///< as many as the formula has arguments
};

/// The value that a number starts with, where that is not 0.
struct TQX_StartingValue {
    uint16_t row;
    double value;
};

/// Beside its layout, all that the generic functions need of a described type.
struct TQX_DescribedType {
    TQX_DescribedTypeFacts facts;
    const TQX_DescribedFacts* fields;  ///< as many as the layout has
    const TQX_Derivation* derivations; ///< in the order in which they are computed
    const TQX_StartingValue* starts;
    uint16_t derivationCount;
    uint16_t startCount;
    uint16_t schemaSize;                 ///< number of types in `schema`
    const TQX_TypeLayout* const* schema; ///< all types read with it, from TQX_firstDescribedType on
    uint32_t leastEntry; ///< bytes that an entry takes in any block; 0 for a main block
};

/// A formula that derived values may use, null when there is none of that name.
TQX_CODEC_API const TQX_Formula* TQX_findFormula(const char* name);

/// Number of its arguments.
TQX_CODEC_API unsigned TQX_argumentCount(const TQX_Formula& formula);

} // namespace Kor::MessageApi
