#include "emit/metadata/MetadataSources.h"

#include "emit/Groups.h"
#include "emit/metadata/FieldFacts.h"
#include "emit/metadata/FieldRows.h"
#include "model/Names.h"

#include <fmt/format.h>

#include <set>

namespace korcg::generator
{

namespace
{

constexpr size_t UnitCount = 16;

std::string fieldDefinitions(const RecordType& type, int index)
{
    return fmt::format(
        R"(
{name}* {name}::getInstance()
{{
    static {name} instance;
    return &instance;
}}

inline {name}::{name}()
    : TQX_FieldInfo(TQX_TypeRows::{type}, {index})
{{
}}

{name}::~{name}() = default;
)",
        fmt::arg("name", fieldInfoClass(type, type.fields[static_cast<size_t>(index)])),
        fmt::arg("type", type.name), fmt::arg("index", index));
}

std::string messageDefinitions(const RecordType& type)
{
    std::string properties;
    if (type.isMain()) {
        properties = fmt::format(
            "    addMainProperties(TQX_{}_BlockNumber_FieldInfo::getInstance());\n", type.name);
    }
    return fmt::format(R"(
const {name}* {name}::getInstance()
{{
    static const {name} instance;
    return &instance;
}}

{name}::{name}()
    : TQX_MessageInfo(TQX_TypeRows::{type})
{{
    setupFields();
{properties}}}

{name}::~{name}() = default;

void {name}::setupFields()
{{
    addFields();
}}
)",
                       fmt::arg("name", messageInfoClass(type.name)), fmt::arg("type", type.name),
                       fmt::arg("properties", properties));
}

std::string typeDefinitions(const RecordType& type)
{
    const std::string rows = type.name + "_fields";
    std::string text = fmt::format(R"(
// {type}

// class name, instance, sub-block metadata, sub-block getter
static constexpr TQX_FieldRow {rows}[] = {{
{initialisers}}};

const TQX_TypeRow TQX_TypeRows::{type} = {typeRow};
)",
                                   fmt::arg("type", type.name), fmt::arg("rows", rows),
                                   fmt::arg("initialisers", fieldRows(type)),
                                   fmt::arg("typeRow", typeRow(type, rows)));
    text += messageDefinitions(type);
    for (int i = 0; i < static_cast<int>(type.fields.size()); ++i)
        text += fieldDefinitions(type, i);
    return text;
}

/// Headers that the rows and classes of a run of types need, sorted and each once.
std::string includes(const Selection& run)
{
    std::set<std::string> headers;
    for (const RecordType* type : run) {
        headers.insert(fmt::format("TQX_{}_FieldInfos.h", type->name));
        headers.insert(messageInfoClass(type->name) + ".h");
        for (const Field& field : type->fields) {
            if (!isSubMessage(field))
                continue;
            headers.insert(messageInfoClass(field.subType) + ".h");
            headers.insert(fmt::format("TQX_{}_Message.h", type->name));
            headers.insert(fmt::format("TQX_{}_Message.h", field.subType));
        }
    }
    std::string text;
    for (const std::string& header : headers)
        text += fmt::format("#include \"{}\"\n", header);
    return text;
}

std::string sources(const Selection& run)
{
    std::set<std::string> files;
    for (const RecordType* type : run)
        files.insert(sourceOf(*type));
    return files.empty() ? "no type" : fmt::format("{}", fmt::join(files, ", "));
}

void emitUnit(const Selection& run, size_t number, Output& output)
{
    std::string definitions;
    for (const RecordType* type : run)
        definitions += typeDefinitions(*type);
    output.write(fmt::format("TQX_Metadata_{}.cpp", number), sources(run),
                 fmt::format(R"(#include "TQX_Instances.h"
#include "TQX_TypeRows.h"
{}{})",
                             includes(run), definitions));
}

} // namespace

void emitMetadataSources(const Selection& types, Output& output)
{
    size_t number = 0;
    for (const Selection& run : groups(types, UnitCount))
        emitUnit(run, number++, output);
}

} // namespace korcg::generator
