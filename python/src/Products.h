#pragma once

#include "LogFile.h"
#include "tqx/gnss/position/PositionBlocks.h"

#include <memory>
#include <string>
#include <vector>

namespace tqx::python
{

/// The source of positions of that name, or, for "", the best one that the logs have; null when
/// they have none. Reads the logs for that. Throws DataError for an unknown name.
const PositionSource* findPositionSource(const std::vector<std::shared_ptr<LogFile>>& logs,
                                         const std::string& name);

} // namespace tqx::python
