#include "emit/reference/Html.h"
#include "emit/reference/Pages.h"
#include "model/Names.h"

#include <fmt/format.h>

#include <algorithm>

namespace korcg::generator::reference
{

namespace
{

constexpr std::size_t shortTable = 20;

const Field& row(const RecordType& type, int index)
{
    return type.fields[static_cast<std::size_t>(index)];
}

/// Columns that are shown only where a field of the type has something in them.
struct Columns {
    bool hasUnit = false;
    bool hasScale = false;
    bool hasPrecision = false;
    bool hasRevision = false;
};

Columns columnsOf(const RecordType& type)
{
    Columns columns;
    for (const Field& field : type.fields) {
        columns.hasUnit |= !field.unit.empty();
        columns.hasScale |= field.scale.has_value();
        columns.hasPrecision |= field.precision.has_value();
        columns.hasRevision |=
            field.presence == Presence::SinceRevision || field.presence == Presence::OnlyRevision;
    }
    return columns;
}

std::string revisionText(const Field& field)
{
    switch (field.presence) {
    case Presence::SinceRevision:
        return fmt::format("{}", field.presenceValue);
    case Presence::OnlyRevision:
        return fmt::format("only {}", field.presenceValue);
    case Presence::Always:
    case Presence::Selected:
        break;
    }
    return {};
}

std::string presenceText(const RecordType& type, const Field& field)
{
    if (field.presence == Presence::Selected) {
        return fmt::format("when {} is {}", escaped(row(type, field.selector).name),
                           field.presenceValue);
    }
    return field.presence == Presence::SinceRevision && field.alwaysSent
               ? "its bytes are in earlier revisions, too"
               : "";
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
    const auto& values = found->second.values;
    std::string text;
    for (const SymbolicValue& value : values) {
        text += fmt::format("{}<span class=\"value\">{}&nbsp;{}</span>", text.empty() ? "" : ", ",
                            value.value, escaped(value.name));
    }
    const std::string link =
        fmt::format("<a href=\"names.html#{0}\">{0}</a>", escaped(field.symbols));
    if (values.size() <= shortTable)
        return text;
    return fmt::format("<details><summary>{} named values</summary>{}: {}</details>", values.size(),
                       link, text);
}

std::string meaning(const Format& format, const RecordType& type, const Field& field)
{
    std::string text = escaped(field.text);
    for (const std::string& part :
         {presenceText(type, field), derivationText(field),
          field.doNotUse ? fmt::format("not available: {}{}", field.isWhole ? "all " : "",
                                       numberText(*field.doNotUse))
                         : ""}) {
        if (!part.empty())
            text += (text.empty() ? "" : "; ") + part;
    }
    const std::string names = namesText(format, field);
    if (!names.empty() && !text.empty())
        text += "<br>";
    return text + names;
}

std::string unitText(const Format& format, const Field& field)
{
    const auto found = format.units.find(field.unit);
    if (found == format.units.end() || found->second == field.unit)
        return escaped(field.unit);
    return fmt::format("{} <small>{}</small>", escaped(found->second), escaped(field.unit));
}

std::string classOf(const RecordType& type, const Field& field)
{
    const bool isPart = field.kind == FieldKind::Bits;
    const bool isMinor = field.isHeader || field.isPadding || field.role == Role::Reserved ||
                         (isPart && row(type, field.parent).isHeader);
    return fmt::format("{}{}", isPart ? "part" : "", isMinor ? " minor" : "");
}

std::string fieldRow(const Format& format, const RecordType& type, const Field& field,
                     const Columns& columns)
{
    const bool placed = field.onWire() && field.wireOffset >= 0;
    std::string text =
        fmt::format("<tr id=\"{}\" class=\"{}\"><td>{}</td><td>{}</td><td>{}</td>", anchorOf(field),
                    classOf(type, field), placed ? fmt::format("{}", field.wireOffset) : "",
                    escaped(field.name), typeText(type, field));
    // Labels for screens that are too narrow for columns.
    const auto cell = [&text](bool isShown, std::string_view label, const std::string& content) {
        if (isShown)
            text += fmt::format("<td data-label=\"{}\">{}</td>", label, content);
    };
    cell(columns.hasUnit, "unit", unitText(format, field));
    cell(columns.hasScale, "scale", field.scale ? fmt::format("{}", *field.scale) : "");
    cell(columns.hasPrecision, "digits",
         field.precision ? fmt::format("{}", *field.precision) : "");
    cell(columns.hasRevision, "since revision", revisionText(field));
    text += "<td>" + meaning(format, type, field) + "</td>";
    return text + "</tr>\n";
}

std::string headRow(const Columns& columns)
{
    std::string text = "<tr><th>Offset</th><th>Field</th><th>Type</th>";
    const auto cell = [&text](bool isShown, std::string_view name, std::string_view explanation) {
        if (isShown)
            text += fmt::format("<th title=\"{}\">{}</th>", explanation, name);
    };
    cell(columns.hasUnit, "Unit", "symbol, and the word that the library uses");
    cell(columns.hasScale, "Scale", "factor from the stored value to the unit");
    cell(columns.hasPrecision, "Digits", "digits after the point in texts");
    cell(columns.hasRevision, "Since", "first revision that has the field");
    return text + "<th>Meaning</th></tr>\n";
}

} // namespace

std::string typePage(const Format& format, const RecordType& type)
{
    const Columns columns = columnsOf(type);
    std::string body = fmt::format("<p class=\"summary\">{}</p>\n", summary(format, type));
    body += typeFacts(format, type);
    body += "<table class=\"fields\">\n<thead>" + headRow(columns) + "</thead>\n<tbody>\n";
    for (const Field& field : type.fields)
        body += fieldRow(format, type, field, columns);
    return page(type.name, body + "</tbody>\n</table>\n");
}

} // namespace korcg::generator::reference
