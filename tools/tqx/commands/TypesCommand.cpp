#include "TypesCommand.h"

#include "FieldTable.h"
#include "Output.h"
#include "TQX_codec.h"
#include "ToolError.h"
#include "TypeNames.h"
#include "TypesJson.h"

#include "MessageInfo.h"
#include "TQX_FormatInfo.h"

#include <fmt/format.h>

#include <charconv>

namespace tool
{

using namespace Kor::MessageApi;

namespace
{

/// The type of that name or block number.
const TQX_TypeLayout& typeOf(const std::string& name)
{
    uint16_t number = 0;
    const char* end = name.data() + name.size();
    const auto [stop, error] = std::from_chars(name.data(), end, number);
    const TQX_TypeLayout* type = nullptr;
    if (stop == end && error == std::errc())
        type = TQX_layout(TQX_recordType(number));
    else
        type = findType(name);
    if (!type)
        throw ToolError(stop == end ? "there is no block " + name : unknownType(name));
    return *type;
}

const MessageInfo* metadataOf(const TQX_TypeLayout& type)
{
    return TQX_FormatInfo::getInstance()->getMessageInfo(QLatin1String(type.name));
}

void appendCatalogue(Buffer& out)
{
    for (const MessageInfo* type : TQX_FormatInfo::getInstance()->getAllMessageInfos()) {
        const std::string number =
            type->isMain() ? type->getAttribute("blocknr").toString().toStdString() : "sub";
        const std::string text = type->getShortDescriptiveText().toStdString();
        const std::string name = type->getName().toStdString();
        if (text.empty())
            out.append(fmt::format("{:>4}  {}\n", number, name));
        else
            out.append(fmt::format("{:>4}  {:<28}  {}\n", number, name, text));
    }
}

} // namespace

TypesCommand::TypesCommand(CLI::App& program)
    : Command(program, "types", "List the types of blocks, or show the layout of some",
              "  tqx types\n"
              "  tqx types 4007\n"
              "  tqx types --json | jq '.[] | select(.kind == \"main\") | .name'\n")
{
    app.add_option("NAME", names, "Types to show the layout of: names or block numbers")
        ->type_name("");
    app.add_flag("--json", json, "All metadata as a JSON array, in order of registration");
}

ExitStatus TypesCommand::run()
{
    Output output;
    if (json)
        appendJson(output.getBuffer());
    else if (names.empty())
        appendCatalogue(output.getBuffer());
    else
        appendLayouts(output.getBuffer());
    output.flush();
    return ExitStatus::Done;
}

void TypesCommand::appendJson(Buffer& out) const
{
    std::vector<const MessageInfo*> wanted;
    for (const std::string& name : names) {
        const TQX_TypeLayout& type = typeOf(name);
        if (!type.hasMessage)
            throw ToolError(std::string(type.name) + " has no metadata");
        wanted.push_back(metadataOf(type));
    }
    if (names.empty())
        for (const MessageInfo* type : TQX_FormatInfo::getInstance()->getAllMessageInfos())
            wanted.push_back(type);
    appendTypesJson(out, wanted);
}

void TypesCommand::appendLayouts(Buffer& out) const
{
    bool first = true;
    for (const std::string& name : names) {
        const TQX_TypeLayout& type = typeOf(name);
        if (!first)
            out.append('\n');
        first = false;
        appendFieldTable(out, type, type.hasMessage ? metadataOf(type) : nullptr);
    }
}

} // namespace tool
