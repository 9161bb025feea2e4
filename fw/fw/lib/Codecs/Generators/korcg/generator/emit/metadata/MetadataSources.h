#pragma once

#include "emit/Emitters.h"

namespace korcg::generator
{

/// TQX_Metadata_<k>.cpp, k from 0: rows and classes of all types, in 16 translation units of about
/// the same number of fields, each with a contiguous run of types.
void emitMetadataSources(const Selection& types, Output& output);

} // namespace korcg::generator
