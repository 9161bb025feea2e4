#include "emit/metadata/SymbolTables.h"

#include "model/Names.h"

#include <fmt/format.h>

#include <filesystem>
#include <set>

namespace korcg::generator
{

namespace
{

std::string rows(const SymbolTable& table)
{
    std::string text;
    for (const SymbolicValue& symbol : table.values)
        text += fmt::format("        {{{}, {}}},\n", symbol.value, literal(symbol.name));
    return text;
}

} // namespace

std::string symbolFunction(const std::string& table)
{
    return "TQX_symbols_" + identifier(table);
}

void emitSymbolTables(const Format& format, const Selection& types, Output& output)
{
    std::set<std::string> used;
    for (const RecordType* type : types)
        for (const Field& field : type->fields)
            if (!field.symbols.empty())
                used.insert(field.symbols);

    std::string source = "symbols.yaml";
    std::string declarations;
    std::string definitions;
    for (const std::string& name : used) {
        const SymbolTable& table = format.symbols.at(name);
        source = std::filesystem::path(table.where.file).filename().string();
        declarations += fmt::format("const TQX_SymbolNames& {}();\n", symbolFunction(name));
        definitions +=
            fmt::format(R"(
const TQX_SymbolNames& {function}()
{{
    static constexpr TQX_Symbol symbols[] = {{
{rows}    }};
    static const TQX_SymbolNames names(symbols);
    return names;
}}
)",
                        fmt::arg("function", symbolFunction(name)), fmt::arg("rows", rows(table)));
    }
    output.write("TQX_SymbolTables.h", source,
                 fmt::format(R"(#pragma once

class TQX_SymbolNames;

/// Named values of enumerated fields, built at the first call and shared by all their fields.
{})",
                             declarations));
    output.write("TQX_SymbolTables.cpp", source,
                 fmt::format(R"(#include "TQX_SymbolTables.h"

#include "TQX_SymbolNames.h"
{})",
                             definitions));
}

} // namespace korcg::generator
