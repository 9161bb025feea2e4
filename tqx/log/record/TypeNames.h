#pragma once

#include "TQX_Layout.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tqx
{

/// The layout of the type of that name, case ignored, or null.
const Kor::MessageApi::TQX_TypeLayout* findType(std::string_view name);

/// Calls `visit` with the layout of every record type, in ascending number.
void forEachType(const std::function<void(const Kor::MessageApi::TQX_TypeLayout&)>& visit);

/// Calls `visit` with the path of every field of a type and of its sub-blocks, in the order of the
/// layout: "Latitude", "Type1", "Type1.CN0".
void forEachField(const Kor::MessageApi::TQX_TypeLayout& type,
                  const std::function<void(const std::string&)>& visit);

/// The candidate most like `name`, or "" when none is near enough to be what was meant, as for
/// texts that are longer than names are.
std::string nearest(std::string_view name, const std::vector<std::string_view>& candidates);

/// "there is no <kind> named X", with the nearest candidate as a suggestion. X is shortened and
/// without control characters.
std::string unknownName(std::string_view kind, std::string_view name,
                        const std::vector<std::string_view>& candidates);

/// Text of an unknown type name, see unknownName().
std::string unknownType(std::string_view name);

/// Whether two names are equal but for the case of their letters.
bool equalNames(std::string_view a, std::string_view b);

/// Whether `written` is the name of a field, or a path of such names, but for case and for
/// underscores that stand for blanks.
bool equalFields(std::string_view name, std::string_view written);

} // namespace tqx
