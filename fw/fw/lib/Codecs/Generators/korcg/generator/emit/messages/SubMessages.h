#pragma once

#include "model/Model.h"

#include <string>

namespace korcg::generator
{

// Pieces of the text of a message class whose block holds sub-blocks.

/// The two getSubMessages() overrides.
std::string childDeclarations();

/// ensureSubMessages() and disposeSubMessages().
std::string cacheDeclarations();

/// Cache members in the documented order; empty for a class without sub-blocks.
std::string cacheMembers(const RecordType& type);

/// Definitions of the four functions; empty for a class without sub-blocks.
std::string childDefinitions(const RecordType& type);

} // namespace korcg::generator
