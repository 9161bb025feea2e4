#include "emit/reference/Html.h"

#include "model/Names.h"

#include <fmt/format.h>

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

std::string page(std::string_view title, std::string_view body)
{
    return fmt::format("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                       "<meta name=\"viewport\" content=\"width=device-width\">\n"
                       "<title>{0}</title>\n<link rel=\"stylesheet\" href=\"reference.css\">\n"
                       "</head>\n<body>\n"
                       "<nav><a href=\"index.html\">By name</a> <a href=\"numbers.html\">By "
                       "number</a> <a href=\"families.html\">By family</a> <a "
                       "href=\"names.html\">Named values</a> <a href=\"framing.html\">Framing</a>"
                       "</nav>\n<h1>{0}</h1>\n{1}</body>\n</html>\n",
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
