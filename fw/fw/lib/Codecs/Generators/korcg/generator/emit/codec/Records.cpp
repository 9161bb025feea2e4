#include "emit/codec/Parts.h"
#include "model/Names.h"

#include <fmt/format.h>

namespace korcg::generator::codec
{

namespace
{

bool ownsArrays(const RecordType& type)
{
    for (const Field& field : type.fields) {
        if (field.kind == FieldKind::Blocks)
            return true;
    }
    return false;
}

// Elements of a member: text has room for its terminating zero, a payload counted in bytes for an
// element that is begun.
int room(const RecordType& type, const Field& field)
{
    const Field& array = field.kind == FieldKind::Bits && field.parent >= 0
                             ? type.fields[static_cast<std::size_t>(field.parent)]
                             : field;
    if (array.isText() || array.countsBytes)
        return array.elements + 1;
    return array.isArray() ? array.elements : 0;
}

std::string member(const RecordType& type, const Field& field)
{
    const std::string name = identifier(field.name);
    if (field.kind == FieldKind::Blocks) {
        return fmt::format("    {0}* {1} = nullptr;\n    ArrayStorage {1}_storage = "
                           "ArrayStorage::Own;\n",
                           recordName(field.subType), name);
    }
    if (field.kind == FieldKind::Embedded)
        return fmt::format("    {} {};\n", recordName(field.subType), name);
    if (const int elements = room(type, field); elements != 0)
        return fmt::format("    {} {}[{}];\n", memberType(field.type), name, elements);
    return fmt::format("    {} {};\n", memberType(field.type), name);
}

bool isCount(const RecordType& type, int row)
{
    for (const Field& field : type.fields) {
        if (field.kind == FieldKind::Blocks && field.count == row)
            return true;
    }
    return false;
}

} // namespace

std::string recordStruct(const RecordType& type)
{
    const bool owner = ownsArrays(type);
    const std::string name = recordName(type);
    std::string text;
    if (type.isMain()) {
        text += fmt::format("/// Block {}{}{}.\n", type.number, type.text.empty() ? "" : ": ",
                            type.text.empty() || type.text.back() != '.'
                                ? type.text
                                : type.text.substr(0, type.text.size() - 1));
    } else {
        text += fmt::format("/// Sub-block {}.\n", type.name);
    }
    text += fmt::format("struct {} {{\n", name);
    text += owner ? "    uint32_t korcg_type = 0;\n    uint32_t korcg_bits = 0;\n    void* "
                    "korcg_father = nullptr;\n"
                  : "    uint32_t korcg_type;\n    uint32_t korcg_bits;\n    void* "
                    "korcg_father;\n";
    for (std::size_t row = 0; row < type.fields.size(); ++row) {
        const Field& field = type.fields[row];
        // The record keeps the continuous time beside the time that it continues.
        if (field.isHeader && field.name == "TOWc")
            continue;
        if (owner && isCount(type, static_cast<int>(row))) {
            text += fmt::format("    {} {} = 0;\n", memberType(field.type), identifier(field.name));
        } else {
            text += member(type, field);
        }
        if (field.isHeader && field.name == "TOW")
            text += "    uint32_t TOWc;\n";
    }
    if (owner) {
        text += fmt::format("\n    {0}() = default;\n    ~{0}() {{ ::TQX_release(this); }}\n"
                            "    {0}(const {0}&) = delete;\n    {0}& operator=(const {0}&) = "
                            "delete;\n",
                            name);
    }
    return text + "};\n\n";
}

} // namespace korcg::generator::codec
