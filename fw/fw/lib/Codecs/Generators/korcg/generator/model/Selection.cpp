#include "model/Selection.h"

#include <fmt/format.h>

#include <set>

namespace korcg::generator
{

std::vector<const RecordType*> select(const Format& format, const std::vector<std::string>& names,
                                      Errors& errors)
{
    std::set<const RecordType*> chosen;
    std::vector<const RecordType*> open;
    const auto choose = [&](const RecordType* type) {
        if (chosen.insert(type).second)
            open.push_back(type);
    };
    if (names.empty()) {
        for (const RecordType& type : format.types)
            choose(&type);
    }
    for (const std::string& name : names) {
        if (const RecordType* type = format.find(name)) {
            choose(type);
        } else {
            errors.add({"--types", 0}, fmt::format("there is no type {}", name));
        }
    }
    while (!open.empty()) {
        const RecordType* type = open.back();
        open.pop_back();
        for (const Field& field : type->fields) {
            if (const RecordType* sub =
                    field.subType.empty() ? nullptr : format.find(field.subType))
                choose(sub);
        }
    }
    std::vector<const RecordType*> selection;
    for (const RecordType& type : format.types) {
        if (chosen.count(&type) != 0)
            selection.push_back(&type);
    }
    return selection;
}

} // namespace korcg::generator
