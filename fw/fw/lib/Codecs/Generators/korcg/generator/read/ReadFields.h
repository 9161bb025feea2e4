#pragma once

#include "read/Draft.h"
#include "read/YamlMap.h"

namespace korcg::generator
{

/// Reads one entry of a `fields` list: a wire field with its sub-fields, a sub-block field or a
/// derived field.
FieldDraft readField(const ReadContext& context, const YAML::Node& node);

} // namespace korcg::generator
