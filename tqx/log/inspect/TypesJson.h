#pragma once

#include "TQX_Layout.h"
#include "tqx/log/schema/Schema.h"
#include "tqx/log/text/Buffer.h"
#include "tqx_log_export.h"

#include <vector>

namespace tqx
{

/// The types that have a message class, in the order of the registry; then those that descriptions
/// added, in their order.
TQX_LOG_API std::vector<const Kor::MessageApi::TQX_TypeLayout*>
registeredTypes(const Schema& schema = {});

/// Appends the types and their fields as one JSON array, one type per line, without properties that
/// are not set.
TQX_LOG_API void appendTypesJson(Buffer& out,
                                 const std::vector<const Kor::MessageApi::TQX_TypeLayout*>& types);

} // namespace tqx
