#pragma once

#include "tqx/log/schema/Schema.h"
#include "tqx_log_export.h"

#include <cstddef>
#include <cstdint>

namespace tqx
{

/// Whether a header may begin a block: a type has its number, and its length is one that a block of
/// that type and revision can have. False for every header of an unknown number, which may be
/// a newer type's: a reason to doubt, no proof. `id` is the header's ID, revision included.
TQX_LOG_API bool isPlausibleHeader(uint16_t id, size_t length, const Schema& schema = {});

} // namespace tqx
