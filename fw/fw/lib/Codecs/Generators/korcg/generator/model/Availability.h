#pragma once

#include "model/Model.h"

#include <string>
#include <vector>

namespace korcg::generator
{

/// A field whose do-not-use value makes a derived value not available, too.
struct NeededField {
    const RecordType* type; ///< that has it
    int row;                ///< in that type
    int linksUp;            ///< parent links from the derived field's record to that of the type

    const Field& field() const { return type->fields[static_cast<std::size_t>(row)]; }
};

/// Of what a field is derived from, directly or by way of other derived fields, those that can be
/// not available; each once. None for a field that is not derived. The description has been
/// checked.
std::vector<NeededField> neededFields(const Format& format, const RecordType& type,
                                      const Field& field);

/// "not available when CN0 or Doppler of MeasEpochChannelType1 is not", or "" when no input can be.
std::string neededText(const Format& format, const RecordType& type, const Field& field);

} // namespace korcg::generator
