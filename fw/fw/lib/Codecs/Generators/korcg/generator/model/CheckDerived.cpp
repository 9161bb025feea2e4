#include "model/CheckParts.h"
#include "model/Identifiers.h"

#include <fmt/format.h>

#include <set>

namespace korcg::generator
{

namespace
{

constexpr std::string_view parentPrefix = "parent.";

class DerivedCheck
{
public:
    DerivedCheck(const Format& format, const RecordType& type, int row, Errors& errors)
        : m_format(format), m_type(type), m_row(row),
          m_field(type.fields[static_cast<std::size_t>(row)]), m_errors(errors)
    {
    }

    void run()
    {
        if (!isIdentifier(m_field.function))
            error(fmt::format("has no valid formula name '{}'", m_field.function));
        if (m_field.after >= m_row) {
            error("precedes the field that it is computed after");
        } else if (m_field.after >= 0 &&
                   !m_type.fields[static_cast<std::size_t>(m_field.after)].hasCode()) {
            error(fmt::format("cannot be computed after {}, which is not read from the wire itself",
                              m_type.fields[static_cast<std::size_t>(m_field.after)].name));
        }
        for (const std::string& input : m_field.inputs) {
            if (input.rfind(parentPrefix, 0) == 0) {
                checkParentInput(input);
            } else {
                checkInput(input);
            }
        }
    }

private:
    void error(const std::string& text)
    {
        m_errors.add(m_field.where, qualified(m_type, m_field) + ' ' + text);
    }

    void checkInput(const std::string& input)
    {
        const int row = findRow(m_type, input);
        if (row < 0) {
            error(fmt::format("is computed from {}, which {} does not have", input, m_type.name));
        } else if (row >= m_row || knownBehind(m_type, row) > m_field.after) {
            error(fmt::format("is computed from {}, which comes later", input));
        } else if (!m_type.fields[static_cast<std::size_t>(row)].subType.empty()) {
            error(fmt::format("cannot be computed from sub-block {}", input));
        }
    }

    /// Climbs one link per prefix; every type that can be there must have the member, read before
    /// the sub-blocks are.
    void checkParentInput(std::string input)
    {
        std::set<const RecordType*> below;
        std::set<const RecordType*> here = {&m_type};
        while (input.rfind(parentPrefix, 0) == 0) {
            input.erase(0, parentPrefix.size());
            below = here;
            here.clear();
            for (const RecordType* type : below) {
                for (const int owner : type->owners)
                    here.insert(&m_format.types[static_cast<std::size_t>(owner)]);
            }
        }
        if (here.empty())
            error(fmt::format("is computed from {} of a parent, but has none there", input));
        const int first = here.empty() ? -1 : findRow(**here.begin(), input);
        for (const RecordType* owner : here) {
            const int row = findRow(*owner, input);
            if (row < 0) {
                error(fmt::format("is computed from {}, which its owner {} does not have", input,
                                  owner->name));
            } else if (comesLate(*owner, row, below)) {
                error(fmt::format("is computed from {}, which follows it in its owner {}", input,
                                  owner->name));
            } else if (first >= 0 && row != first) {
                error(fmt::format("is computed from {}, which is in different places of {} and {}",
                                  input, (*here.begin())->name, owner->name));
            }
        }
    }

    static bool comesLate(const RecordType& owner, int row, const std::set<const RecordType*>& subs)
    {
        for (int each = 0; each < row; ++each) {
            for (const RecordType* sub : subs) {
                if (owner.fields[static_cast<std::size_t>(each)].subType == sub->name)
                    return true;
            }
        }
        return false;
    }

    const Format& m_format;
    const RecordType& m_type;
    int m_row;
    const Field& m_field;
    Errors& m_errors;
};

} // namespace

void checkDerived(const Format& format, const RecordType& type, Errors& errors)
{
    for (std::size_t row = 0; row < type.fields.size(); ++row) {
        if (type.fields[row].kind == FieldKind::Derived && !type.fields[row].isHeader)
            DerivedCheck(format, type, static_cast<int>(row), errors).run();
    }
}

} // namespace korcg::generator
