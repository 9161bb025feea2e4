#pragma once

#include "tqx/log/schema/Schema.h"
#include "tqx_log_export.h"

#include <cstddef>
#include <cstdint>

namespace tqx
{

/// Whether a header may begin a block: its number is known, and its length is possible for that
/// type and revision. False for every unknown number, which may belong to a newer type: a reason
/// for doubt, not proof. `id` is the header's ID, revision included.
TQX_LOG_API bool isPlausibleHeader(uint16_t id, size_t length, const Schema& schema = {});

} // namespace tqx
