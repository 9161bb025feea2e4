#include "emit/reference/Html.h"
#include "emit/reference/Pages.h"
#include "model/Names.h"

#include <fmt/format.h>

namespace korcg::generator::reference
{

namespace
{

constexpr std::size_t shortTable = 20;

const Field& row(const RecordType& type, int index)
{
    return type.fields[static_cast<std::size_t>(index)];
}

std::string presenceText(const RecordType& type, const Field& field)
{
    switch (field.presence) {
    case Presence::Always:
        return {};
    case Presence::SinceRevision:
        return fmt::format("since revision {}{}", field.presenceValue,
                           field.alwaysSent ? ", its bytes are always there" : "");
    case Presence::OnlyRevision:
        return fmt::format("revision {} only", field.presenceValue);
    case Presence::Selected:
        return fmt::format("when {} is {}", escaped(row(type, field.selector).name),
                           field.presenceValue);
    }
    return {};
}

std::string derivationText(const Field& field)
{
    if (field.kind != FieldKind::Derived || field.function.empty())
        return {};
    std::string inputs;
    for (const std::string& input : field.inputs)
        inputs += (inputs.empty() ? "" : ", ") + escaped(input);
    return fmt::format("computed: {}({})", escaped(field.function), inputs);
}

std::string namesText(const Format& format, const Field& field)
{
    const auto found = format.symbols.find(field.symbols);
    if (found == format.symbols.end())
        return {};
    if (found->second.values.size() > shortTable)
        return fmt::format("<a href=\"names.html#{0}\">{0}</a>", escaped(field.symbols));
    std::string text;
    for (const SymbolicValue& value : found->second.values) {
        text +=
            fmt::format("{}{}&nbsp;{}", text.empty() ? "" : ", ", value.value, escaped(value.name));
    }
    return text;
}

std::string notes(const Format& format, const RecordType& type, const Field& field)
{
    const std::string parts[] = {
        escaped(field.text),
        presenceText(type, field),
        derivationText(field),
        field.doNotUse ? fmt::format("not available: {}", numberText(*field.doNotUse)) : "",
        namesText(format, field),
    };
    std::string text;
    for (const std::string& part : parts) {
        if (!part.empty())
            text += (text.empty() ? "" : "; ") + part;
    }
    return text;
}

std::string unitText(const Field& field)
{
    const std::string scale = field.scale ? fmt::format("&times;&nbsp;{} ", *field.scale) : "";
    return scale + escaped(field.unit);
}

std::string fieldRow(const Format& format, const RecordType& type, const Field& field)
{
    const bool placed = field.onWire() && field.wireOffset >= 0;
    return fmt::format("<tr{}><td>{}</td><td>{}</td><td>{}</td><td>{}</td><td>{}</td></tr>\n",
                       field.kind == FieldKind::Bits ? " class=\"part\"" : "",
                       placed ? fmt::format("{}", field.wireOffset) : "", escaped(field.name),
                       typeText(type, field), unitText(field), notes(format, type, field));
}

std::string facts(const Format& format, const RecordType& type)
{
    std::string text = "<dl>\n";
    const auto add = [&text](std::string_view name, const std::string& value) {
        if (!value.empty())
            text += fmt::format("<dt>{}</dt><dd>{}</dd>\n", name, value);
    };
    add("Block number", type.isMain() ? fmt::format("{}", type.number) : "");
    add("Record type", fmt::format("{}", type.record));
    add("Revisions", fmt::format("0 to {}", type.highestRevision));
    add("Flexible rate", !type.isMain() ? "" : type.flexrate ? "yes" : "no");
    std::string owners;
    for (const int owner : type.owners) {
        owners += (owners.empty() ? "" : ", ") +
                  linkTo(format.types[static_cast<std::size_t>(owner)].name);
    }
    add("Part of", owners);
    add("Result codes", fmt::format("{} to {}", type.fields.front().code,
                                    type.isMain() ? type.crcChecksum : type.internal));
    add("Family", escaped(sourceOf(type)));
    add("Message class",
        type.hasMessage ? fmt::format("TQX_{}_Message", escaped(type.name)) : "none, decoded only");
    return text + "</dl>\n";
}

} // namespace

std::string typePage(const Format& format, const RecordType& type)
{
    std::string body = type.text.empty() ? "" : fmt::format("<p>{}</p>\n", escaped(type.text));
    body += facts(format, type);
    body += "<table>\n<tr><th>Offset</th><th>Field</th><th>Type</th><th>Unit</th><th></th></tr>\n";
    for (const Field& field : type.fields)
        body += fieldRow(format, type, field);
    return page(type.name, body + "</table>\n");
}

} // namespace korcg::generator::reference
