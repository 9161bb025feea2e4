#include "emit/metadata/MetadataHeaders.h"

#include "emit/metadata/FieldFacts.h"
#include "model/Names.h"

#include <fmt/format.h>

namespace korcg::generator
{

namespace
{

std::string fieldClass(const RecordType& type, const Field& field)
{
    return fmt::format(R"(
/// {description}
class TQX_API {name} : public TQX_FieldInfo
{{
public:
    static {name}* getInstance();

protected:
    ~{name}() override;

private:
    TQX_NO_EXPORT {name}();
}};
)",
                       fmt::arg("description", describe(type, field)),
                       fmt::arg("name", fieldInfoClass(type, field)));
}

std::string description(const RecordType& type)
{
    if (!type.text.empty())
        return fmt::format("{}: {}", type.name, type.text);
    return type.isMain() ? fmt::format("{}, block {}", type.name, type.number)
                         : fmt::format("{}, a sub-block", type.name);
}

} // namespace

void emitMetadataHeaders(const RecordType& type, Output& output)
{
    const std::string name = messageInfoClass(type.name);
    output.write(name + ".h", sourceOf(type),
                 fmt::format(R"(#pragma once

#include "TQX_MessageInfo.h"

/// {description}
class TQX_API {name} : public TQX_MessageInfo
{{
public:
    {name}(const {name}&) = default;
    {name}& operator=(const {name}&) = default;

    static const {name}* getInstance();

protected:
    ~{name}() override;

private:
    TQX_NO_EXPORT {name}();
    TQX_NO_EXPORT void setupFields();
}};
)",
                             fmt::arg("description", description(type)), fmt::arg("name", name)));

    std::string classes;
    for (const Field& field : type.fields)
        classes += fieldClass(type, field);
    output.write(fmt::format("TQX_{}_FieldInfos.h", type.name), sourceOf(type),
                 fmt::format(R"(#pragma once

#include "TQX_FieldInfo.h"

// Fields of {description}
{classes})",
                             fmt::arg("description", description(type)),
                             fmt::arg("classes", classes)));
}

void emitTypeRowsHeader(const Selection& types, Output& output)
{
    std::string rows;
    for (const RecordType* type : types)
        rows += fmt::format("extern const TQX_TypeRow {};\n", type->name);
    output.write("TQX_TypeRows.h", "the whole description",
                 fmt::format(R"(#pragma once

#include "TQX_FieldRow.h"

/// The constant rows of all message types.
namespace TQX_TypeRows
{{
{}}}
)",
                             rows));
}

} // namespace korcg::generator
