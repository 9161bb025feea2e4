#include "emit/Emitters.h"
#include "emit/facts/FactPools.h"
#include "model/Availability.h"
#include "model/Names.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace korcg::generator
{

namespace
{

constexpr size_t largestIndex = std::numeric_limits<uint16_t>::max();

class FactsEmitter
{
public:
    FactsEmitter(const Format& format, const Selection& selection)
        : m_format(format), m_selection(selection)
    {
    }

    std::string text();

private:
    std::string fieldRow(const RecordType& type, int index);
    std::string typeRow(const RecordType& type);
    std::string typeRows();
    std::string namedRuns();
    std::string units();
    std::string numbers() const;
    void checkSizes() const;

    const Format& m_format;
    const Selection& m_selection;
    TextPool m_texts;
    Pool<double> m_reals{0};
    Pool<uint64_t> m_integers{0};
    Pool<std::string> m_tables{""};
    std::string m_inputs = "    {0, 0},\n";
    size_t m_inputCount = 1;
    size_t m_namedCount = 1; ///< the first row is none
    size_t m_fieldCount = 0;
};

bool isSubBlock(const Field& field)
{
    return field.kind == FieldKind::Blocks || field.kind == FieldKind::Embedded;
}

unsigned flags(const Field& field)
{
    const std::pair<bool, unsigned> all[] = {
        {field.isOptional, 1},
        {field.isRepeated, 2},
        {field.isVirtual, 4},
        {field.bitMask, 8},
        {field.identifies, 16},
        {field.doNotUse.has_value(), 32},
        {field.doNotUse && field.doNotUseNamed, 64},
        {field.isWhole, 256},
    };
    unsigned value = 0;
    for (const auto& [isSet, flag] : all)
        value |= isSet ? flag : 0;
    return value;
}

std::string FactsEmitter::fieldRow(const RecordType& type, int index)
{
    const Field& field = type.fields[static_cast<size_t>(index)];
    size_t integer = 0;
    size_t real = 0;
    if (field.doNotUse && isFloat(field.type)) {
        real = m_reals.indexOf(
            std::visit([](auto value) { return static_cast<double>(value); }, *field.doNotUse));
    } else if (field.doNotUse) {
        integer = m_integers.indexOf(
            std::visit([](auto value) { return static_cast<uint64_t>(value); }, *field.doNotUse));
    }
    const std::vector<NeededField> needed = neededFields(m_format, type, field);
    const size_t firstInput = needed.empty() ? 0 : m_inputCount;
    for (const NeededField& input : needed) {
        m_inputs += fmt::format("    {{{}, {}}}, // {} of {}\n", input.row, input.linksUp,
                                input.field().name, input.type->name);
    }
    m_inputCount += needed.size();
    const auto subFields =
        std::count_if(type.fields.begin(), type.fields.end(),
                      [index](const Field& other) { return other.parent == index; });
    return fmt::format("    {{{}, {}, {}, {}, {}, {}, {}, {}, TQX_Role({}), {}, {}}}, // {}\n",
                       m_texts.offsetOf(field.unit), m_reals.indexOf(field.scale.value_or(0)),
                       integer, real, m_tables.indexOf(field.symbols), firstInput, flags(field),
                       isSubBlock(field) ? -1 : field.precision.value_or(-1),
                       static_cast<int>(field.role), subFields, needed.size(), field.name);
}

std::string FactsEmitter::typeRow(const RecordType& type)
{
    return fmt::format("    {{{}, {}, {}, {}, {}, {}, '{}'}}, // {}\n", m_fieldCount,
                       type.registration, m_texts.offsetOf(type.text), type.generation,
                       type.flexrate, type.esoc, type.timestamp, type.name);
}

std::string FactsEmitter::typeRows()
{
    std::string fields;
    std::string types;
    int next = 0;
    for (const RecordType* type : m_selection) {
        for (; next < type->record; ++next)
            types += "    {noType, 0, 0, 0, false, false, 0},\n";
        ++next;
        types += typeRow(*type);
        m_fieldCount += type->fields.size();
        fields += fmt::format("    // {}\n", type->name);
        for (int i = 0; i < static_cast<int>(type->fields.size()); ++i)
            fields += fieldRow(*type, i);
    }
    return fmt::format(
        R"(// row, parent links to it
const TQX_FieldInput inputs[] = {{
{}}};

// unit, scale, do-not-use as integer, as real, named values, inputs, flags, precision, role,
// sub-fields, number of inputs
const TQX_FieldFacts fields[] = {{
{}}};

// first field, registration, description, generation, flexrate, esoc, timestamp
const TQX_TypeFacts types[] = {{
{}}};

const uint32_t typeCount = {};
)",
        m_inputs, fields, types, next);
}

std::string FactsEmitter::namedRuns()
{
    std::string rows = "    {0, 0},\n";
    std::string runs;
    for (const std::string& name : m_tables.values()) {
        const size_t first = m_namedCount;
        if (!name.empty()) {
            rows += fmt::format("    // {}\n", name);
            for (const SymbolicValue& value : m_format.symbols.at(name).values) {
                rows += fmt::format("    {{{}, {}}}, // {}\n", value.value,
                                    m_texts.offsetOf(value.name), value.name);
                ++m_namedCount;
            }
        }
        runs += fmt::format("    {{{}, {}, {}}}, // {}\n", first, m_namedCount - first,
                            m_texts.offsetOf(name), name.empty() ? "none" : name);
    }
    return fmt::format("const NamedRow namedRows[] = {{\n{}}};\n\n"
                       "const NamedRun namedRuns[] = {{\n{}}};\n\n"
                       "const uint32_t namedRunCount = {};\n\n",
                       rows, runs, m_tables.values().size());
}

std::string FactsEmitter::units()
{
    std::string rows = "    {0, 0},\n";
    for (const auto& [word, symbol] : m_format.units) {
        rows += fmt::format("    {{{}, {}}}, // {}: {}\n", m_texts.offsetOf(word),
                            m_texts.offsetOf(symbol), word, symbol);
    }
    return fmt::format("const UnitRow units[] = {{\n{}}};\n\nconst uint32_t unitCount = {};\n\n",
                       rows, m_format.units.size() + 1);
}

std::string FactsEmitter::numbers() const
{
    std::string reals;
    for (const double value : m_reals.values())
        reals += fmt::format("    {},\n", value);
    std::string integers;
    for (const uint64_t value : m_integers.values())
        integers += fmt::format("    {:#x},\n", value);
    return fmt::format("const double reals[] = {{\n{}}};\n\n"
                       "const uint64_t integers[] = {{\n{}}};\n\n",
                       reals, integers);
}

/// Rows have indices of 16 bits.
void FactsEmitter::checkSizes() const
{
    const std::pair<const char*, size_t> sizes[] = {{"characters of texts", m_texts.size()},
                                                    {"real numbers", m_reals.values().size()},
                                                    {"integers", m_integers.values().size()},
                                                    {"named values", m_namedCount},
                                                    {"inputs", m_inputCount},
                                                    {"symbol tables", m_tables.values().size()}};
    for (const auto& [what, size] : sizes) {
        if (size > largestIndex) {
            throw std::runtime_error(
                fmt::format("facts: {} {}, there is room for {}", size, what, largestIndex));
        }
    }
}

std::string FactsEmitter::text()
{
    const std::string rows = typeRows();
    const std::string named = namedRuns();
    const std::string unitRows = units();
    checkSizes();
    return fmt::format(R"(#include "FactTables.h"

namespace Kor::MessageApi::Facts
{{

const char texts[] =
{texts};

{numbers}{units}{named}{rows}
}} // namespace Kor::MessageApi::Facts
)",
                       fmt::arg("texts", m_texts.literals()), fmt::arg("numbers", numbers()),
                       fmt::arg("units", unitRows), fmt::arg("named", named),
                       fmt::arg("rows", rows));
}

} // namespace

void emitFacts(const Format& format, const Selection& selection, Output& output)
{
    output.write("TQX_facts.cpp", "the whole description", FactsEmitter(format, selection).text());
}

} // namespace korcg::generator
