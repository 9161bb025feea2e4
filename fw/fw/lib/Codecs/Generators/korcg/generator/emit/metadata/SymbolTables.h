#pragma once

#include "emit/Emitters.h"

#include <string>

namespace korcg::generator
{

/// Name of the generated function that gives a symbol table: "TQX_symbols_svid".
std::string symbolFunction(const std::string& table);

/// TQX_SymbolTables.h and .cpp: each table that the types use, once.
void emitSymbolTables(const Format& format, const Selection& types, Output& output);

} // namespace korcg::generator
