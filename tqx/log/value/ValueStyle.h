#pragma once

#include "TQX_FieldFacts.h"
#include "tqx_log_export.h"

#include <string_view>

namespace tqx
{

/// How values of fields are shown.
struct ValueStyle {
    bool isStored = false;    ///< as they are stored: without scale, unit and names
    bool isInDegrees = false; ///< angles in radians as degrees, unless isStored
    bool hasSymbols = false;  ///< units by their symbols, "m/s", not by words
};

/// The unit to write after a value of the field, empty for none.
TQX_LOG_API std::string_view shownUnit(const Kor::MessageApi::TQX_FieldFacts& field,
                                       const ValueStyle& style);

/// The name of a unit, in the style: "second" or "s".
TQX_LOG_API std::string_view shownUnit(std::string_view unit, const ValueStyle& style);

/// The factor by which shown values of the field are multiplied; 0 for none.
TQX_LOG_API double shownScale(const Kor::MessageApi::TQX_FieldFacts& field,
                              const ValueStyle& style);

/// Like shownDecimals(field) in ShownDecimals.h, for the unit shown: enough in degrees for the same
/// resolution as in radians.
TQX_LOG_API int shownDecimals(const Kor::MessageApi::TQX_FieldFacts& field,
                              const ValueStyle& style);

} // namespace tqx
