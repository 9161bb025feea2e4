#include "model/CheckParts.h"

#include <fmt/format.h>

#include <map>
#include <string>

namespace korcg::generator
{

namespace
{

struct Meaning {
    const RecordType* type = nullptr;
    const Field* field = nullptr;
};

/// What both fields have differently, or nothing.
std::string difference(const Field& one, const Field& other)
{
    if (one.unit != other.unit)
        return "unit";
    if (one.scale != other.scale)
        return "scale";
    if (one.doNotUse != other.doNotUse)
        return "do-not-use value";
    if (one.isWhole != other.isWhole)
        return "meaning of 'none'";
    return {};
}

template<typename Visit>
void forEachField(const Format& format, Visit visit)
{
    for (const RecordType& type : format.types) {
        for (const Field& field : type.fields) {
            if (!type.broken && !field.isHeader && field.subType.empty())
                visit(type, field);
        }
    }
}

} // namespace

void checkMeanings(const Format& format, Errors& errors)
{
    std::map<std::string, Meaning> usual; // by name of the field
    forEachField(format, [&](const RecordType& type, const Field& field) {
        if (!field.differs)
            usual.emplace(field.name, Meaning{&type, &field});
    });
    forEachField(format, [&](const RecordType& type, const Field& field) {
        const auto found = usual.find(field.name);
        if (found == usual.end())
            return;
        const Meaning& other = found->second;
        const std::string what = difference(field, *other.field);
        if (!field.differs && !what.empty()) {
            errors.add(field.where,
                       fmt::format("{} has another {} than {}; 'differs: true' would allow it",
                                   qualified(type, field), what,
                                   qualified(*other.type, *other.field)));
        } else if (field.differs && what.empty()) {
            errors.add(field.where,
                       fmt::format("{} does not differ from {}", qualified(type, field),
                                   qualified(*other.type, *other.field)));
        }
    });
}

} // namespace korcg::generator
