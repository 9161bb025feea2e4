#include "emit/Emitters.h"
#include "model/Names.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <string_view>

namespace korcg::generator
{

namespace
{

constexpr std::string_view parentPrefix = "parent.";

/// Formulas that join the parts of a number which is 0 when it was not measured. No part alone says
/// so, since 0 is a value of each.
constexpr std::string_view joinedToZero[] = {"codeRange"};

class InputRows
{
public:
    explicit InputRows(const Format& format) : m_format(format) {}

    void add(const RecordType& type, size_t row)
    {
        const Field& field = type.fields[row];
        for (const std::string& input : field.inputs)
            addInput(type, row, input);
        if (std::count(std::begin(joinedToZero), std::end(joinedToZero), field.function) != 0)
            append(type, row, type, row, 0, true);
    }

    const std::string& getRows() const { return m_rows; }
    size_t getCount() const { return m_count; }

private:
    void addInput(const RecordType& type, size_t row, std::string_view input)
    {
        std::set<const RecordType*> owners = {&type};
        unsigned links = 0;
        for (; input.substr(0, parentPrefix.size()) == parentPrefix; ++links) {
            input.remove_prefix(parentPrefix.size());
            std::set<const RecordType*> above;
            for (const RecordType* owner : owners)
                for (const int index : owner->owners)
                    above.insert(&m_format.types[static_cast<size_t>(index)]);
            owners = above;
        }
        for (const RecordType* owner : owners) {
            const auto found = std::find_if(
                owner->fields.begin(), owner->fields.end(),
                [input](const Field& field) { return identifier(field.name) == input; });
            if (found != owner->fields.end())
                append(type, row, *owner, static_cast<size_t>(found - owner->fields.begin()), links,
                       false);
        }
    }

    void append(const RecordType& type, size_t row, const RecordType& owner, size_t inputRow,
                unsigned links, bool zeroIsNone)
    {
        m_rows += fmt::format("    {{{}, {}, {}, {}, {}, {}}}, // {}.{}: {}.{}\n", type.record, row,
                              owner.record, inputRow, links, zeroIsNone, type.name,
                              type.fields[row].name, owner.name, owner.fields[inputRow].name);
        ++m_count;
    }

    const Format& m_format;
    std::string m_rows;
    size_t m_count = 0;
};

} // namespace

void emitDerivedInputs(const Format& format, const Selection& selection, Output& output)
{
    InputRows inputs(format);
    for (const RecordType* type : selection)
        for (size_t row = 0; row < type->fields.size(); ++row)
            inputs.add(*type, row);
    // A table may not be empty.
    output.write("TQX_derived_inputs.cpp", "the whole description",
                 fmt::format(R"(#include "FactTables.h"

namespace Kor::MessageApi::Facts
{{

// record type, row, record type of the owner, row of the input, links, 0 means none
const TQX_DerivedInput derivedInputs[] = {{
{}    {{0xffff, 0, 0, 0, 0, false}},
}};

const uint32_t derivedInputCount = {};

}} // namespace Kor::MessageApi::Facts
)",
                             inputs.getRows(), inputs.getCount()));
}

} // namespace korcg::generator
