#include "tqx/log/schema/Descriptions.h"

#include "TQX_Edition.h"
#include "TQX_FieldFacts.h"
#include "model/Names.h"
#include "read/Addition.h"
#include "tqx/log/DataError.h"
#include "tqx/log/schema/AddedTypeBuilder.h"

#include <set>
#include <utility>

namespace tqx
{

using namespace Kor::MessageApi;
using namespace korcg::generator;

namespace
{

/// What descriptions may refer to in the built-in format.
Format builtFormat()
{
    Format format;
    format.name = "TQX";
    for (unsigned i = 1; i < TQX_unitCount(); ++i) {
        const std::string word(TQX_unitWord(i));
        format.units.emplace(word, TQX_unitSymbol(word));
    }
    for (unsigned i = 1; i < TQX_namedValueTables(); ++i) {
        SymbolTable table;
        table.name = TQX_namedValueTableName(i);
        for (const TQX_NamedValue named : TQX_namedValueTable(i))
            table.values.push_back({named.value, std::string(named.name), 1});
        format.symbols.emplace(table.name, table);
    }
    std::set<double> scales;
    Schema().forEachType([&](const TQX_TypeLayout& type) {
        for (int row = 0; row < type.fieldCount; ++row)
            scales.insert(TQX_scale(TQX_factsOf(type, row)));
    });
    scales.erase(0);
    format.scales.assign(scales.begin(), scales.end());
    return format;
}

AddedTo builtTypes()
{
    AddedTo base;
    base.format = builtFormat();
    base.firstRecord = static_cast<int>(TQX_firstDescribedType);
    base.firstCode = TQX_firstDescribedCode;
    Schema().forEachType([&](const TQX_TypeLayout& type) {
        base.names.emplace(upperName(type.name), type.name);
        if (type.blockNumber != 0)
            base.numbers.emplace(type.blockNumber, type.name);
    });
    base.hasFormula = [](const std::string& name, unsigned& arguments) {
        const TQX_Formula* formula = TQX_findFormula(name.c_str());
        if (formula != nullptr) {
            arguments = TQX_argumentCount(*formula);
        }
        return formula != nullptr;
    };
    return base;
}

void throwErrors(const Errors& errors)
{
    std::string text;
    for (const std::string& line : errors.report())
        text += (text.empty() ? "" : "\n") + line;
    throw DataError(text);
}

std::shared_ptr<const AddedTypes> build(const std::vector<Source>& sources, Errors& errors)
{
    Format format;
    if (errors.empty())
        format = loadAddition(sources, builtTypes(), errors);
    std::shared_ptr<const AddedTypes> types;
    if (errors.empty())
        types = buildAddedTypes(format, errors);
    if (!errors.empty())
        throwErrors(errors);
    return types;
}

} // namespace

std::shared_ptr<const AddedTypes> readDescriptions(const std::vector<std::string>& paths)
{
    Errors errors;
    std::vector<Source> sources;
    for (const std::string& path : paths) {
        for (Source& source : readSourcesAt(path, errors))
            sources.push_back(std::move(source));
    }
    return build(sources, errors);
}

std::shared_ptr<const AddedTypes> parseDescriptions(const std::vector<DescriptionText>& texts)
{
    Errors errors;
    std::vector<Source> sources;
    for (const DescriptionText& each : texts)
        sources.push_back({each.file, each.text});
    return build(sources, errors);
}

} // namespace tqx
