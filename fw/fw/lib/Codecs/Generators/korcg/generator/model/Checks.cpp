#include "model/Checks.h"

#include "model/CheckParts.h"
#include "model/Names.h"

#include <fmt/format.h>

namespace korcg::generator
{

std::string qualified(const RecordType& type, const Field& field)
{
    return fmt::format("{}.{}", type.name, field.name);
}

int findRow(const RecordType& type, const std::string& name)
{
    for (std::size_t row = 0; row < type.fields.size(); ++row) {
        if (identifier(type.fields[row].name) == name)
            return static_cast<int>(row);
    }
    return -1;
}

int knownBehind(const RecordType& type, int row)
{
    const Field& field = type.fields[static_cast<std::size_t>(row)];
    if (field.kind == FieldKind::Bits)
        return field.parent;
    return field.kind == FieldKind::Derived ? field.after : row;
}

void check(const Format& format, Errors& errors)
{
    checkIdentities(format, errors);
    checkNesting(format, errors);
    checkMeanings(format, errors);
    for (const RecordType& type : format.types) {
        if (type.broken)
            continue;
        checkNames(type, errors);
        checkLayout(type, errors);
        checkDerived(format, type, errors);
        checkValues(format, type, errors);
    }
}

} // namespace korcg::generator
