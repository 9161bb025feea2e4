#pragma once

#include "tqx/log/inspect/Inspection.h"
#include "tqx/log/text/Buffer.h"

namespace tqx::tool
{

/// Appends an inspection as one JSON object on a line. Properties that are not set are left out.
void appendInspectionJson(Buffer& out, const Inspection& inspection);

} // namespace tqx::tool
