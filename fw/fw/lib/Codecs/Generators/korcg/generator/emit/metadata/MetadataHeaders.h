#pragma once

#include "emit/Emitters.h"

namespace korcg::generator
{

/// TQX_<Name>_MessageInfo.h and TQX_<Name>_FieldInfos.h of one type.
void emitMetadataHeaders(const RecordType& type, Output& output);

/// TQX_TypeRows.h: declares the constant row of every type.
void emitTypeRowsHeader(const Selection& types, Output& output);

} // namespace korcg::generator
