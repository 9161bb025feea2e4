#include "model/Numbering.h"

#include "model/Limits.h"
#include "model/Values.h"

#include <map>

namespace korcg::generator
{

namespace
{

constexpr int notConstant = -1;

/// Walks the fields of one type in wire order.
class Placer
{
public:
    void place(RecordType& type)
    {
        for (Field& field : type.fields) {
            if (field.kind == FieldKind::Bits) {
                field.wireOffset = type.fields[static_cast<std::size_t>(field.parent)].wireOffset;
            } else if (field.onWire()) {
                field.wireOffset = placeWireField(field);
            }
        }
    }

private:
    int placeWireField(const Field& field)
    {
        if (field.presence == Presence::OnlyRevision)
            return endOf(field.presenceValue);
        if (field.presence == Presence::Selected)
            return placeAlternative(field);
        if (m_selector >= 0) {
            m_selector = -1;
            m_position = notConstant;
        }
        if (field.presence == Presence::SinceRevision && !field.alwaysSent) {
            for (; m_revision < field.presenceValue; ++m_revision)
                m_ends[m_revision] = m_position;
        }
        // What follows an entry that has grown is found by the length of the entry.
        m_isGrown = m_isGrown || field.isAddition;
        if (m_isGrown && !field.isAddition)
            m_position = notConstant;
        const int here = m_position;
        advance(m_position, field);
        return here;
    }

    int placeAlternative(const Field& field)
    {
        if (m_selector != field.selector) {
            m_start = m_selector >= 0 ? notConstant : m_position;
            m_selector = field.selector;
            m_alternatives.clear();
        }
        int& position = m_alternatives.emplace(field.presenceValue, m_start).first->second;
        const int here = position;
        advance(position, field);
        return here;
    }

    static void advance(int& position, const Field& field)
    {
        const bool isFixed = field.hasCode() && !field.isCounted();
        if (position != notConstant)
            position = isFixed ? position + wireSize(field) : notConstant;
        if (position > largestBlock)
            position = notConstant;
    }

    /// End of what a block of that revision holds.
    int endOf(int revision) const
    {
        const auto end = m_ends.find(revision);
        if (end != m_ends.end())
            return end->second;
        return m_selector >= 0 ? notConstant : m_position;
    }

    int m_position = 0;
    int m_revision = 0;
    bool m_isGrown = false;
    std::map<int, int> m_ends; ///< per revision that later fields extend

    int m_selector = -1; ///< row that the alternatives being placed hang on
    int m_start = 0;
    std::map<int, int> m_alternatives; ///< position by selecting value
};

} // namespace

int wireSize(const Field& field)
{
    return field.hasCode() ? bitsOf(field.type) / 8 * field.elements : 0;
}

void placeFields(Format& format)
{
    for (RecordType& type : format.types)
        Placer().place(type);
}

} // namespace korcg::generator
