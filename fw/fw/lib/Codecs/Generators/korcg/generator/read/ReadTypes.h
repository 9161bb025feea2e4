#pragma once

#include "read/Draft.h"
#include "read/YamlMap.h"

#include <vector>

namespace korcg::generator
{

/// Reads a list of `- block:` and `- sub:` entries. A type in which something is wrong is returned
/// all the same, marked as broken.
std::vector<TypeDraft> readTypes(const ReadContext& context, const YAML::Node& list);

} // namespace korcg::generator
