#pragma once

#include "TQX_Layout.h"
#include "tqx/log/text/Buffer.h"

class MessageInfo;

namespace tqx
{

/// Appends what a type is and a table of its fields: where they stand, how wide they are, their
/// units, scales, names of values, revisions and meaning. `info` is the type's metadata, null for a
/// type without message class, which then shows its layout alone.
void appendFieldTable(Buffer& out, const Kor::MessageApi::TQX_TypeLayout& type,
                      const MessageInfo* info);

} // namespace tqx
