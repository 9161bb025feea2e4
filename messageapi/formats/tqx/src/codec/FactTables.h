#pragma once

#include "TQX_FieldFacts.h"

/// The generated tables of facts.
namespace Kor::MessageApi::Facts
{

struct NamedRow {
    int64_t value;
    uint16_t name; ///< where it begins in `texts`
};

/// Rows of one table of named values.
struct NamedRun {
    uint16_t first;
    uint16_t count;
    uint16_t name; ///< where that of the table begins in `texts`
};

struct UnitRow {
    uint16_t word;   ///< where it begins in `texts`, as the next
    uint16_t symbol; ///< which is UTF-8
};

/// TQX_TypeFacts::firstField where there is no such type.
constexpr uint32_t noType = UINT32_MAX;

extern const char texts[];        ///< concatenated, each with its zero; the first is empty
extern const double reals[];      ///< the first is 0
extern const uint64_t integers[]; ///< the first is 0
extern const UnitRow units[];     ///< the first is none
extern const uint32_t unitCount;
extern const NamedRow namedRows[]; ///< the first is of no table
extern const NamedRun namedRuns[]; ///< the first is empty
extern const uint32_t namedRunCount;
extern const TQX_FieldInput inputs[]; ///< the first is of no field
extern const TQX_FieldFacts fields[];
extern const TQX_TypeFacts types[]; ///< by record type
extern const uint32_t typeCount;

} // namespace Kor::MessageApi::Facts
