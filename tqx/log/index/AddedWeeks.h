#pragma once

#include "tqx/log/index/FramedPages.h"
#include "tqx/log/schema/Schema.h"
#include "tqx/log/source/RandomAccess.h"

namespace tqx
{

/// Makes blocks of the added types of a schema move the week in framed pages of `log`, as those of
/// built-in types do. Reads the pages that have such blocks and links all of them anew. Throws
/// SourceError when the log cannot be read.
void followAddedTypes(FramedPages& pages, const RandomAccess& log, const Schema& schema);

} // namespace tqx
