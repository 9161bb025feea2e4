#pragma once

#include "TQX_Layout.h"
#include "tqx/log/schema/Schema.h"
#include "tqx_log_export.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tqx
{

/// The layout of the built-in type of that name, case ignored, or null. Schema has the same for all
/// types.
TQX_LOG_API const Kor::MessageApi::TQX_TypeLayout* findType(std::string_view name);

/// Calls `visit` with the layout of every built-in record type, by ascending number.
TQX_LOG_API void
forEachType(const std::function<void(const Kor::MessageApi::TQX_TypeLayout&)>& visit);

/// Calls `visit` with the path of every field of a type and of its sub-blocks, in the order of the
/// layout: "Latitude", "Type1", "Type1.CN0".
TQX_LOG_API void forEachField(const Kor::MessageApi::TQX_TypeLayout& type,
                              const std::function<void(const std::string&)>& visit);

/// The candidate most like `name`, or "" when none is near enough to be what was meant; always for
/// texts longer than any name.
TQX_LOG_API std::string nearest(std::string_view name,
                                const std::vector<std::string_view>& candidates);

/// "there is no <kind> named X", with the nearest candidate as a suggestion. X is shortened and
/// stripped of control characters.
TQX_LOG_API std::string unknownName(std::string_view kind, std::string_view name,
                                    const std::vector<std::string_view>& candidates);

/// Error text for a name that no type of the schema has, see unknownName().
TQX_LOG_API std::string unknownType(std::string_view name, const Schema& schema = {});

/// Whether two names are equal, ignoring case.
TQX_LOG_API bool equalNames(std::string_view a, std::string_view b);

/// Whether `written` is the name of a field or a path of such names, ignoring case, with
/// underscores for blanks.
TQX_LOG_API bool equalFields(std::string_view name, std::string_view written);

} // namespace tqx
