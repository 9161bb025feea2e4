#include "model/CheckParts.h"
#include "model/Values.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace korcg::generator
{

namespace
{

class ValueCheck
{
public:
    ValueCheck(const Format& format, const RecordType& type, const Field& field, Errors& errors)
        : m_format(format), m_type(type), m_field(field), m_errors(errors)
    {
    }

    void run()
    {
        if (!m_field.unit.empty() && m_format.units.count(m_field.unit) == 0)
            error(fmt::format("has the unknown unit '{}'", m_field.unit));
        if (m_field.scale && !contains(m_format.scales, *m_field.scale))
            error(fmt::format("has the unknown scale {}", *m_field.scale));
        if (m_field.bitMask && !isInteger(m_field.type))
            error("is shown as a bit mask, but is not a whole number");
        if (m_field.type == Scalar::Char && m_field.scale)
            error("is a character and has no scale");
        checkSymbols();
        checkDoNotUse();
        checkInitial();
        checkPrecision();
    }

private:
    void error(const std::string& text)
    {
        m_errors.add(m_field.where, qualified(m_type, m_field) + ' ' + text);
    }

    template<typename Value>
    static bool contains(const std::vector<Value>& values, const Value& value)
    {
        return std::find(values.begin(), values.end(), value) != values.end();
    }

    void checkSymbols()
    {
        if (m_field.symbols.empty())
            return;
        const auto table = m_format.symbols.find(m_field.symbols);
        if (table == m_format.symbols.end()) {
            error(fmt::format("uses the unknown symbol table '{}'", m_field.symbols));
            return;
        }
        if (!isInteger(m_field.type)) {
            error("is not a whole number and has no named values");
            return;
        }
        const auto& values = table->second.values;
        const auto wrong =
            std::find_if(values.begin(), values.end(), [this](const SymbolicValue& symbol) {
                return !fits(m_field, symbol.value);
            });
        if (wrong != values.end()) {
            error(fmt::format("is {} and cannot be {} '{}' of symbol table '{}'",
                              valueTypeName(m_field), wrong->value, wrong->name, m_field.symbols));
        }
    }

    /// A value that means something cannot say that there is none, but where the field says that
    /// the table has a name for that.
    void checkDoNotUse()
    {
        const auto table = m_format.symbols.find(m_field.symbols);
        if (!m_field.doNotUseNamed || table == m_format.symbols.end())
            return;
        for (const SymbolicValue& symbol : table->second.values) {
            if (equals(*m_field.doNotUse, symbol.value)) {
                error(fmt::format("cannot have the do-not-use value {}, which is '{}' of symbol "
                                  "table '{}'; 'unnamed_none: true' would allow it",
                                  symbol.value, symbol.name, m_field.symbols));
            }
        }
    }

    void checkInitial()
    {
        if (!m_field.initial || isReal(m_field.type))
            return;
        const double value = *m_field.initial;
        constexpr double exact =
            9007199254740992.0; // 2^53: up to here each whole number is a double
        if (std::trunc(value) != value || std::fabs(value) > exact ||
            !fits(m_field, static_cast<int64_t>(value)))
            error(fmt::format("cannot start at {}", value));
    }

    /// Of whole numbers the largest is known.
    void checkPrecision()
    {
        if (!m_field.scale || !m_field.precision || !isInteger(m_field.type))
            return;
        const double largest = static_cast<double>(maximumOf(m_field)) * std::fabs(*m_field.scale);
        if (largest < 0.5 * std::pow(10.0, -*m_field.precision))
            error(fmt::format("shows every value as 0 with {} decimals", *m_field.precision));
    }

    const Format& m_format;
    const RecordType& m_type;
    const Field& m_field;
    Errors& m_errors;
};

} // namespace

void checkValues(const Format& format, const RecordType& type, Errors& errors)
{
    for (const Field& field : type.fields) {
        if (!field.isHeader)
            ValueCheck(format, type, field, errors).run();
    }
}

} // namespace korcg::generator
