#include "emit/Emitters.h"
#include "model/Values.h"

#include <fmt/format.h>

namespace korcg::generator
{

namespace
{

// Type of the value, with what changes how many there are or where their bits are.
std::string shapeOf(const Field& field)
{
    if (!field.subType.empty())
        return field.subType;
    std::string shape = valueTypeName(field);
    if (field.kind == FieldKind::Bits)
        return fmt::format("{}@{}", shape, field.shift);
    return field.isArray() ? fmt::format("{}[{}]", shape, field.elements) : shape;
}

std::string linesOf(const RecordType& type)
{
    std::string lines = fmt::format("\n{} {} {}\n", type.record, type.number, type.name);
    for (const Field& field : type.fields) {
        if (!field.isHeader) {
            lines += fmt::format("  {} {} {} {}\n", field.code, field.wireOffset, shapeOf(field),
                                 field.name);
        }
    }
    return lines;
}

} // namespace

void emitNames(const Selection& selection, Output& output)
{
    std::string text = "# record type, block number, name\n"
                       "#   code, offset, type, name of each field after the header\n";
    for (const RecordType* type : selection)
        text += linesOf(*type);
    output.write("names.txt", "the whole description", text);
}

} // namespace korcg::generator
