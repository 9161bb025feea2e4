#pragma once

#include "read/Source.h"

#include <yaml-cpp/yaml.h>

#include <vector>

namespace korcg::generator
{

/// The YAML documents of a source. Throws YAML::Exception for text that is no YAML, for anchors and
/// aliases, which a description has no use for, and for a comma outside of any list or map.
std::vector<YAML::Node> loadDocuments(const Source& source);

} // namespace korcg::generator
