#include "tqx/log/read/FillPlan.h"

#include <algorithm>

namespace tqx
{

using namespace Kor::MessageApi;

FillPlan::FillPlan(const TQX_TypeLayout& layout) : m_type(&layout)
{
    for (int row = 0; row < layout.fieldCount; ++row) {
        const TQX_FieldLayout& field = layout.fields[row];
        m_names.emplace_back(field.name);
        m_sorted.push_back(row);
        int next = row + 1;
        while (next < layout.fieldCount && layout.fields[next].parent == row)
            ++next;
        m_afterBits.push_back(next);
        const bool isValue = field.kind == TQX_FieldKind::Value;
        if (isValue)
            m_values.push_back(row);
        const bool isPart =
            field.kind == TQX_FieldKind::Bits || field.kind == TQX_FieldKind::Derived;
        const bool isOptional = !field.alwaysSent && field.presence != TQX_Presence::Always;
        if (isOptional || (!isValue && !isPart))
            m_contents.push_back(row);
        if (field.recordType != 0)
            m_subBlocks.push_back(row);
    }
    std::sort(m_sorted.begin(), m_sorted.end(), [this](int a, int b) {
        return m_names[static_cast<size_t>(a)] < m_names[static_cast<size_t>(b)];
    });
}

int FillPlan::find(std::string_view name) const
{
    const auto found = std::lower_bound(m_sorted.begin(), m_sorted.end(), name,
                                        [this](int row, std::string_view wanted) {
                                            return m_names[static_cast<size_t>(row)] < wanted;
                                        });
    return found != m_sorted.end() && m_names[static_cast<size_t>(*found)] == name ? *found : -1;
}

} // namespace tqx
