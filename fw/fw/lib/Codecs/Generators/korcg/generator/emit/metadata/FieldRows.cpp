#include "emit/metadata/FieldRows.h"

#include "emit/metadata/FieldFacts.h"
#include "model/Names.h"

#include <fmt/format.h>

namespace korcg::generator
{

namespace
{

std::string subMessageGetter(const RecordType& type, const Field& field)
{
    const bool isArray = field.kind == FieldKind::Blocks;
    return fmt::format(R"(
        [](const Message& owner, unsigned{index}) -> const Message* {{
            return static_cast<const TQX_{type}_Message&>(owner).get{field}({argument});
        }})",
                       fmt::arg("index", isArray ? " index" : ""), fmt::arg("type", type.name),
                       fmt::arg("field", identifier(field.name)),
                       fmt::arg("argument", isArray ? "index" : ""));
}

std::string fieldRow(const RecordType& type, const Field& field)
{
    const std::string name = fieldInfoClass(type, field);
    std::string subInfo = "nullptr";
    std::string subGetter = "nullptr";
    if (isSubMessage(field)) {
        subInfo = fmt::format("TQX_messageInstance<{}>", messageInfoClass(field.subType));
        subGetter = subMessageGetter(type, field);
    }
    return fmt::format(R"(    {{"{name}",
        TQX_fieldInstance<{name}>,
        {subInfo}, {subGetter}}},
)",
                       fmt::arg("name", name), fmt::arg("subInfo", subInfo),
                       fmt::arg("subGetter", subGetter));
}

} // namespace

std::string fieldRows(const RecordType& type)
{
    std::string text = R"(    // className,
    //     instance,
    //     subMessageInfo, subMessage
)";
    for (const Field& field : type.fields)
        text += fieldRow(type, field);
    return text;
}

std::string typeRow(const RecordType& type, const std::string& rows)
{
    return fmt::format("{{\n    \"{name}\", TQX_messageInstance<{name}>,\n    {rows}, {record}}}",
                       fmt::arg("name", messageInfoClass(type.name)), fmt::arg("rows", rows),
                       fmt::arg("record", type.record));
}

} // namespace korcg::generator
