#pragma once

#include "TQX_FieldFacts.h"
#include "TQX_Layout.h"
#include "tqx/log/value/Notation.h"
#include "tqx_log_export.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace tqx
{

/// The texts of the values of an integer field that are not shown as numbers: names, and a word for
/// "not available". Immutable; the texts live as long as this object.
class TQX_LOG_API ValueNames
{
public:
    /// For a field of any type; only integers have names.
    ValueNames(const Kor::MessageApi::TQX_FieldLayout& layout,
               const Kor::MessageApi::TQX_FieldFacts& facts, const Notation& notation);

    /// The text for a value of the field, null when it is shown as a number. `bits` are those
    /// of the value, sign-extended when it is signed.
    const std::string* find(uint64_t bits) const
    {
        if (bits < m_direct.size())
            return m_direct[bits];
        return bits < m_firstWide ? nullptr : search(bits);
    }

private:
    const std::string* search(uint64_t bits) const;

    std::vector<std::pair<uint64_t, std::string>> m_entries; ///< by value, in two's complement
    std::vector<const std::string*> m_direct;                ///< by value, for small ones
    uint64_t m_firstWide = UINT64_MAX;                       ///< the smallest of the others
};

} // namespace tqx
