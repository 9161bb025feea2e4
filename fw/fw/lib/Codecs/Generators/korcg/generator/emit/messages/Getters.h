#pragma once

#include "model/Model.h"

#include <string>

namespace korcg::generator
{

/// Declarations of all getters of a message class, each below its comment.
std::string getterDeclarations(const Format& format, const RecordType& type);

/// Their definitions.
std::string getterDefinitions(const RecordType& type);

} // namespace korcg::generator
