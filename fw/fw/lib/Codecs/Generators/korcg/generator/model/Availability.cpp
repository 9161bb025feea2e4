#include "model/Availability.h"

#include "model/CheckParts.h"

#include <fmt/format.h>

#include <algorithm>

namespace korcg::generator
{

namespace
{

constexpr std::string_view parentPrefix = "parent.";

class Search
{
public:
    explicit Search(const Format& format) : m_format(format) {}

    void addInputsOf(const RecordType& type, const Field& field, int linksUp)
    {
        for (const std::string& input : field.inputs)
            addInput(type, input, linksUp);
    }

    std::vector<NeededField> found;

private:
    void addInput(const RecordType& derived, std::string_view input, int linksUp)
    {
        const RecordType* type = &derived;
        // Where there are several owners, all have the field in the same row.
        for (; input.rfind(parentPrefix, 0) == 0; input.remove_prefix(parentPrefix.size())) {
            type = &m_format.types[static_cast<std::size_t>(type->owners.front())];
            ++linksUp;
        }
        add({type, findRow(*type, std::string(input)), linksUp});
    }

    void add(const NeededField& input)
    {
        const bool isKnown =
            std::any_of(found.begin(), found.end(), [&input](const NeededField& known) {
                return known.row == input.row && known.linksUp == input.linksUp;
            });
        if (isKnown)
            return;
        if (input.field().doNotUse)
            found.push_back(input);
        addInputsOf(*input.type, input.field(), input.linksUp);
    }

    const Format& m_format;
};

} // namespace

std::vector<NeededField> neededFields(const Format& format, const RecordType& type,
                                      const Field& field)
{
    Search search(format);
    if (field.kind == FieldKind::Derived && !field.isHeader)
        search.addInputsOf(type, field, 0);
    return search.found;
}

std::string neededText(const Format& format, const RecordType& type, const Field& field)
{
    const std::vector<NeededField> needed = neededFields(format, type, field);
    std::string names;
    for (const NeededField& each : needed) {
        const char* const separator = &each == &needed.front()  ? ""
                                      : &each == &needed.back() ? " or "
                                                                : ", ";
        names += separator + each.field().name;
        if (each.linksUp != 0)
            names += " of " + each.type->name;
    }
    return names.empty() ? "" : fmt::format("not available when {} is not", names);
}

} // namespace korcg::generator
