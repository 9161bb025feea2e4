#pragma once

#include "tqx/log/text/Buffer.h"

#include <vector>

class MessageInfo;

namespace tqx
{

/// Appends the metadata of the types as one JSON array, a type a line, properties that are not set
/// left out.
void appendTypesJson(Buffer& out, const std::vector<const MessageInfo*>& types);

} // namespace tqx
