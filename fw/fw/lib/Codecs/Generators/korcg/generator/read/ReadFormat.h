#pragma once

#include "model/Model.h"
#include "read/YamlMap.h"

namespace korcg::generator
{

/// Reads a document that is not a list of types: any of `format`, `units`, `scales`,
/// `registration`, `first_edition` and `symbols`. Tables add up over documents, the others are
/// given once.
void readFormat(const ReadContext& context, const YAML::Node& document, Format& format);

} // namespace korcg::generator
