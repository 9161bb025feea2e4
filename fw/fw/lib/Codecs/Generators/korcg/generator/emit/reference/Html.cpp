#include "emit/reference/Html.h"

#include "model/Names.h"

#include <fmt/format.h>

#include <algorithm>

namespace korcg::generator::reference
{

std::string escaped(std::string_view text)
{
    std::string result;
    for (const char c : text) {
        switch (c) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        default:
            result += c;
        }
    }
    return result;
}

std::string scriptText(std::string_view text)
{
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\')
            result += '\\';
        // A text must not end the script that it is in.
        result += c == '<' ? "\\u003c" : std::string(1, c);
    }
    return result + '"';
}

std::string page(std::string_view title, std::string_view body)
{
    return fmt::format(R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>{0}</title>
<link rel="stylesheet" href="reference.css">
<script src="search.js" defer></script>
</head>
<body>
<header>
<nav><a href="index.html">By name</a> <a href="numbers.html">By number</a>
<a href="families.html">By family</a> <a href="names.html">Named values</a>
<a href="framing.html">Framing</a></nav>
<div id="search"><input type="search" placeholder="Types, fields, named values"
 aria-label="Search" autocomplete="off"><ol hidden></ol></div>
</header>
<main>
<h1>{0}</h1>
{1}</main>
</body>
</html>
)",
                       escaped(title), body);
}

std::string pageName(std::string_view typeName)
{
    return fmt::format("type-{}.html", typeName);
}

std::string linkTo(std::string_view typeName)
{
    return fmt::format("<a href=\"{}\">{}</a>", pageName(typeName), escaped(typeName));
}

std::string anchorOf(const Field& field)
{
    return "f-" + identifier(field.name);
}

std::string familyOf(const RecordType& type)
{
    const std::string file = sourceOf(type);
    std::string name = file.substr(0, file.rfind('.'));
    std::replace(name.begin(), name.end(), '_', ' ');
    return name;
}

std::string ownerLinks(const Format& format, const RecordType& type)
{
    std::string text;
    for (const int index : type.owners) {
        const RecordType& owner = format.types[static_cast<std::size_t>(index)];
        for (const Field& field : owner.fields) {
            if (field.subType != type.name)
                continue;
            text += fmt::format("{}<a href=\"{}#{}\">{}&thinsp;:&thinsp;{}</a>",
                                text.empty() ? "" : ", ", pageName(owner.name), anchorOf(field),
                                escaped(owner.name), escaped(field.name));
        }
    }
    return text;
}

std::string summary(const Format& format, const RecordType& type)
{
    if (!type.text.empty())
        return escaped(type.text);
    if (!type.isMain()) {
        const std::string owners = ownerLinks(format, type);
        return owners.empty() ? "A sub-block" : "Part of " + owners;
    }
    constexpr std::size_t shown = 4;
    std::string names;
    std::size_t count = 0;
    for (const Field& field : type.fields) {
        const bool isContent =
            !field.isHeader && !field.isPadding && field.onWire() && field.role == Role::Data;
        if (isContent && count++ < shown)
            names += (names.empty() ? "" : ", ") + escaped(field.name);
    }
    if (names.empty())
        return "A block of the family " + escaped(familyOf(type));
    return "Holds " + names + (count > shown ? fmt::format(" and {} more", count - shown) : "");
}

std::string typeText(const RecordType& type, const Field& field)
{
    if (field.kind == FieldKind::Blocks || field.kind == FieldKind::Embedded)
        return linkTo(field.subType) + (field.kind == FieldKind::Blocks ? "[]" : "");
    if (field.kind == FieldKind::Bits) {
        if (field.summary != Summary::None)
            return "computed";
        return field.width == 1
                   ? fmt::format("bit {}", field.shift)
                   : fmt::format("bits {}-{}{}", field.shift, field.shift + field.width - 1,
                                 isSigned(field.type) ? ", signed" : "");
    }
    const std::string_view name = field.type == Scalar::Char ? "char" : memberType(field.type);
    std::string text =
        isFloat(field.type) ? fmt::format("f{}", bytesOf(field.type) * 8)
        : field.type == Scalar::Char
            ? std::string(name)
            : fmt::format("{}{}", isSigned(field.type) ? "i" : "u", bytesOf(field.type) * 8);
    if (field.isCounted()) {
        text +=
            fmt::format("[{}]", escaped(type.fields[static_cast<std::size_t>(field.count)].name));
    } else if (field.isArray()) {
        text += fmt::format("[{}]", field.elements);
    }
    return text;
}

std::string numberText(const Number& number)
{
    return std::visit([](auto value) { return fmt::format("{}", value); }, number);
}

} // namespace korcg::generator::reference
