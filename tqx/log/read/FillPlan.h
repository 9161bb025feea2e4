#pragma once

#include "TQX_Layout.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace tqx
{

/// What filling a record from named values needs to know about its layout: made once per type, used
/// for each record.
class FillPlan
{
public:
    explicit FillPlan(const Kor::MessageApi::TQX_TypeLayout& layout);

    const Kor::MessageApi::TQX_TypeLayout& getType() const { return *m_type; }

    /// Row of the field of that name, -1 when there is none. `guess` is the row to try first.
    int find(std::string_view name, int guess) const
    {
        return guess < m_type->fieldCount && m_names[static_cast<size_t>(guess)] == name
                   ? guess
                   : find(name);
    }

    /// The row after a field and its bit ranges.
    int afterBits(int row) const { return m_afterBits[static_cast<size_t>(row)]; }

    /// Rows of numbers and characters with a place of their own.
    const std::vector<int>& getValues() const { return m_values; }

    /// Rows of what depends on these: arrays, texts, sub-blocks, and everything optional.
    const std::vector<int>& getContents() const { return m_contents; }

    /// Rows of sub-blocks.
    const std::vector<int>& getSubBlocks() const { return m_subBlocks; }

    const std::vector<std::string_view>& getNames() const { return m_names; }

private:
    int find(std::string_view name) const;

    const Kor::MessageApi::TQX_TypeLayout* m_type;
    std::vector<std::string_view> m_names; ///< by row
    std::vector<int> m_sorted;             ///< rows by ascending name
    std::vector<int> m_afterBits;          ///< by row
    std::vector<int> m_values;
    std::vector<int> m_contents;
    std::vector<int> m_subBlocks;
};

} // namespace tqx
