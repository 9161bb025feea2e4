#pragma once

#include "TQX_codec.h"

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

/// What tables are to show of a record, found value by value through the generic access to records:
/// the reference that columns are compared with. Texts are those of arrowText().

/// Whether values are scaled, named and hidden when they are not available.
enum class Values { Shown, Stored };

inline void PrintTo(Values values, std::ostream* stream)
{
    *stream << (values == Values::Shown ? "Shown" : "Stored");
}

/// The fields of a record as "name=value,...".
std::string expectedFields(const Kor::MessageApi::TQX_TypeLayout& type, const void* record,
                           Values values);

/// The same of the fields that distinguish records of the type, names with `prefix`.
std::string expectedIdentity(const Kor::MessageApi::TQX_TypeLayout& type, const void* record,
                             const std::string& prefix);

/// Nanoseconds since 1970, or "null".
std::string expectedTime(const void* record);
