#include "commands/TypesCommand.h"

#include "TQX_FieldFacts.h"
#include "io/Output.h"
#include "io/ToolError.h"
#include "tqx/log/inspect/FieldTable.h"
#include "tqx/log/inspect/TypesJson.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/select/NamePattern.h"
#include "tqx/log/text/PrintableText.h"

#include <fmt/format.h>

#include <charconv>
#include <unordered_set>

namespace tqx::tool
{

using namespace Kor::MessageApi;

namespace
{

using Types = std::vector<const TQX_TypeLayout*>;

/// The types that match a name, a block number or a pattern.
Types typesOf(const std::string& name, const Schema& schema)
{
    uint16_t number = 0;
    const char* end = name.data() + name.size();
    const auto [stop, error] = std::from_chars(name.data(), end, number);
    const bool isNumber = stop == end && error == std::errc();
    Types types;
    schema.forEachType([&](const TQX_TypeLayout& type) {
        if (isNumber ? type.blockNumber == number && number != 0 : matchesPattern(type.name, name))
            types.push_back(&type);
    });
    if (!types.empty())
        return types;
    if (isPattern(name))
        throw ToolError("no type has a name like " + shortened(name));
    throw ToolError(stop == end ? "there is no block " + shortened(name)
                                : unknownType(name, schema));
}

Types typesOf(const std::vector<std::string>& names, const Schema& schema)
{
    Types types;
    for (const std::string& name : names) {
        for (const TQX_TypeLayout* type : typesOf(name, schema))
            types.push_back(type);
    }
    return types;
}

void appendCatalogue(Buffer& out, const Schema& schema)
{
    for (const TQX_TypeLayout* type : registeredTypes(schema)) {
        const bool isMain = type->blockNumber != 0;
        const std::string number = isMain ? std::to_string(type->blockNumber) : "sub";
        const std::string_view text =
            isMain ? TQX_description(TQX_factsOf(*type)) : std::string_view();
        if (text.empty()) {
            out.append(fmt::format("{:>4}  {}\n", number, type->name));
        } else {
            out.append(fmt::format("{:>4}  {:<28}  {}\n", number, type->name, text));
        }
    }
}

} // namespace

TypesCommand::TypesCommand(CLI::App& program)
    : Command(program, "types", "List the types of blocks, or show the layout of some",
              "  tqx types\n"
              "  tqx types 4007\n"
              "  tqx types 'Meas*'\n"
              "  tqx types --fields 4027\n"
              "  tqx types --json | jq '.[] | select(.kind == \"main\") | .name'\n")
{
    m_app
        .add_option("NAME", m_names,
                    "Types whose layout to show: names, block numbers, or patterns such as 'PVT*'")
        ->delimiter(',')
        ->type_name("");
    m_descriptions.add(m_app);
    CLI::Option* asJson = m_app.add_flag(
        "--json", m_json, "Write all metadata as a JSON array, in the order of registration");
    m_app
        .add_flag("--fields", m_fields,
                  "List only the names of fields, one per line, in the form of dump --field")
        ->excludes(asJson);
    m_units.add(m_app, "Write units in layouts as words (meter) or symbols (m)")->excludes(asJson);
}

ExitStatus TypesCommand::run()
{
    Output output;
    if (m_json) {
        appendJson(output.getBuffer());
    } else if (m_fields) {
        appendFields(output.getBuffer());
    } else if (m_names.empty()) {
        appendCatalogue(output.getBuffer(), m_descriptions.getSchema());
    } else {
        appendLayouts(output.getBuffer());
    }
    output.flush();
    return ExitStatus::Done;
}

void TypesCommand::appendJson(Buffer& out) const
{
    appendTypesJson(out, m_names.empty() ? registeredTypes(m_descriptions.getSchema())
                                         : typesOf(m_names, m_descriptions.getSchema()));
}

/// Each name once, even if several types have it.
void TypesCommand::appendFields(Buffer& out) const
{
    std::unordered_set<std::string> known;
    const auto add = [&](const TQX_TypeLayout& type) {
        forEachField(type, [&](const std::string& path) {
            if (known.insert(path).second)
                out.append(path + '\n');
        });
    };
    for (const TQX_TypeLayout* type : typesOf(m_names, m_descriptions.getSchema()))
        add(*type);
    if (m_names.empty())
        m_descriptions.getSchema().forEachType(add);
}

void TypesCommand::appendLayouts(Buffer& out) const
{
    ValueStyle style;
    style.hasSymbols = m_units.areSymbols();
    bool first = true;
    for (const TQX_TypeLayout* type : typesOf(m_names, m_descriptions.getSchema())) {
        if (!first)
            out.append('\n');
        first = false;
        appendFieldTable(out, *type, style);
    }
}

} // namespace tqx::tool
