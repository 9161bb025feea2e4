#pragma once

#include "tqx/log/schema/AddedTypes.h"
#include "tqx/log/schema/Schema.h"

#include <memory>
#include <string>
#include <vector>

namespace tqx
{

/// Reads descriptions, see Schema::read() and Schema::parse(). The library uses the description
/// reader only through these two functions.
std::shared_ptr<const AddedTypes> readDescriptions(const std::vector<std::string>& paths);
std::shared_ptr<const AddedTypes> parseDescriptions(const std::vector<DescriptionText>& texts);

} // namespace tqx
