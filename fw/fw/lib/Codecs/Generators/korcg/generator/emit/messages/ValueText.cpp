#include "emit/messages/ValueText.h"

#include "model/Names.h"
#include "model/Values.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

namespace korcg::generator
{

namespace
{

constexpr std::array<std::pair<std::string_view, std::string_view>, 5> headerMeanings = {{
    {"Sync1", "first byte of the block, '$'"},
    {"Sync2", "second byte of the block, '@'"},
    {"BlockNumber", "number of the block type"},
    {"Revision", "revision of the block type, which decides on the fields that it carries"},
    {"TOWc", "TOW carried on past the end of its week, in milliseconds; 4294967295 when unset"},
}};

std::vector<const Field*> partsOf(const RecordType& type, const Field& word)
{
    std::vector<const Field*> parts;
    for (const Field& field : type.fields) {
        if (field.kind == FieldKind::Bits &&
            &type.fields[static_cast<size_t>(field.parent)] == &word)
            parts.push_back(&field);
    }
    return parts;
}

/// "A", "A and B", "A, B and C".
std::string listed(const std::vector<std::string>& names)
{
    std::string text;
    for (size_t i = 0; i < names.size(); ++i)
        text += (i == 0 ? "" : i + 1 == names.size() ? " and " : ", ") + names[i];
    return text;
}

std::string packedText(const RecordType& type, const Field& field)
{
    std::vector<std::string> names;
    for (const Field* part : partsOf(type, field))
        names.push_back(part->name);
    return names.empty() ? "" : "packed from " + listed(names);
}

/// What the field is to sub-blocks further inside that take the length of their entries from it.
std::string lengthInMainText(const Format& format, const RecordType& type, const Field& field)
{
    std::vector<std::string> users;
    for (const RecordType& sub : format.types) {
        const bool isInside = std::any_of(sub.owners.begin(), sub.owners.end(), [&](int owner) {
            return &format.types[static_cast<size_t>(owner)] == &type;
        });
        for (const Field& user : sub.fields) {
            if (isInside && user.lengthInMain && user.length >= 0 &&
                &type.fields[static_cast<size_t>(user.length)] == &field)
                users.push_back(fmt::format("{} sub-block in {}", user.name, sub.name));
        }
    }
    return users.empty() ? "" : "length of a " + listed(users);
}

std::string useText(const RecordType& type, const Field& field)
{
    for (const Field& user : type.fields) {
        const auto isThis = [&](int row) {
            return row >= 0 && &type.fields[static_cast<size_t>(row)] == &field;
        };
        const bool isBlocks = user.kind == FieldKind::Blocks;
        if (isThis(user.count))
            return isBlocks ? "number of " + user.name + " sub-blocks" : "length of " + user.name;
        if (isThis(user.length) && !user.lengthInMain)
            return isBlocks ? "length of a " + user.name + " sub-block" : "length of " + user.name;
    }
    return "";
}

std::string unitText(const Field& field)
{
    if (field.unit.empty())
        return field.scale ? fmt::format("times {}", *field.scale) : "";
    return field.scale ? fmt::format("unit {} {}", *field.scale, field.unit) : "unit " + field.unit;
}

std::string numberText(const Number& number)
{
    return std::visit([](auto value) { return fmt::format("{}", value); }, number);
}

/// A name that ends in a number, for runs such as G01 to G37.
struct NumberedName {
    std::string word;
    std::string digits;

    explicit NumberedName(const std::string& name)
    {
        size_t start = name.size();
        while (start > 0 && std::isdigit(static_cast<unsigned char>(name[start - 1])))
            --start;
        word = name.substr(0, start);
        digits = name.substr(start);
    }

    bool isBefore(const NumberedName& next) const
    {
        constexpr size_t mostDigits = 9;
        return !digits.empty() && digits.size() <= mostDigits && word == next.word &&
               digits.size() == next.digits.size() &&
               std::stol(digits) + 1 == std::stol(next.digits);
    }
};

std::string namedValuesText(const std::vector<SymbolicValue>& values)
{
    constexpr size_t shortestRun = 3;
    std::string text;
    for (size_t i = 0; i < values.size();) {
        size_t end = i + 1;
        while (end < values.size() && values[end].value == values[end - 1].value + 1 &&
               NumberedName(values[end - 1].name).isBefore(NumberedName(values[end].name)))
            ++end;
        if (end - i < shortestRun)
            end = i + 1;
        if (!text.empty())
            text += ", ";
        const SymbolicValue& first = values[i];
        const SymbolicValue& last = values[end - 1];
        text += end == i + 1 ? fmt::format("{}{}{}", first.value, firmBlank, first.name)
                             : fmt::format("{}{}{} to {}{}{}", first.value, firmBlank, first.name,
                                           last.value, firmBlank, last.name);
        i = end;
    }
    return text;
}

std::string rangeText(const Field& field)
{
    if (!isInteger(field.type))
        return "";
    const uint64_t highest = maximumOf(field);
    if (!isSignedInteger(field.type)) {
        const auto* none = field.doNotUse ? std::get_if<uint64_t>(&*field.doNotUse) : nullptr;
        return fmt::format("{} to {}", none && *none == 0 ? 1 : 0,
                           none && *none == highest ? highest - 1 : highest);
    }
    const auto* none = field.doNotUse ? std::get_if<int64_t>(&*field.doNotUse) : nullptr;
    const auto last = static_cast<int64_t>(highest);
    const int64_t first = -last - 1;
    return fmt::format("{} to {}", none && *none == first ? first + 1 : first,
                       none && *none == last ? last - 1 : last);
}

} // namespace

std::string joined(const std::vector<std::string>& parts)
{
    std::string text;
    for (const std::string& part : parts) {
        if (!part.empty())
            text += (text.empty() ? "" : "; ") + part;
    }
    return text;
}

std::string withoutStop(std::string text)
{
    while (!text.empty() && (text.back() == '.' || text.back() == ' '))
        text.pop_back();
    return text;
}

std::string meaningText(const Format& format, const RecordType& type, const Field& field)
{
    if (field.isHeader) {
        for (const auto& [name, meaning] : headerMeanings) {
            if (field.name == name)
                return std::string(meaning);
        }
    }
    if (!field.text.empty())
        return withoutStop(field.text);
    if (field.isPadding)
        return "padding";
    if (field.role == Role::Reserved)
        return "reserved";
    const std::string use = useText(type, field);
    return use.empty() ? lengthInMainText(format, type, field) : use;
}

std::string valueText(const Format& format, const RecordType& type, const Field& field)
{
    if (field.isPadding || field.role == Role::Reserved || field.type == Scalar::Char)
        return "";
    const std::string packed = packedText(type, field);
    if (!packed.empty())
        return packed;
    const auto table = format.symbols.find(field.symbols);
    const bool isNamed = table != format.symbols.end();
    const std::string values = isNamed         ? namedValuesText(table->second.values)
                               : field.bitMask ? "a bit mask"
                                               : rangeText(field);
    std::string missing;
    if (field.doNotUse) {
        missing = fmt::format("{}{}{}when not available", field.isWhole ? "all " : "",
                              numberText(*field.doNotUse), firmBlank);
    }
    const std::string unit = unitText(field);
    const std::string together =
        values.empty() || missing.empty() ? values + missing : values + ", " + missing;
    if (unit.empty() && together.empty())
        return "a number without unit";
    return joined({unit, together});
}

} // namespace korcg::generator
