#pragma once

#include "tqx/log/read/FillPlan.h"
#include "tqx/log/read/JsonValue.h"

#include <memory>
#include <utility>
#include <vector>

namespace tqx
{

/// Fills records from objects of stored values by field name. Caches the plans of their types and
/// its working memory.
class RecordFiller
{
public:
    /// Fills an initialised record, main block or sub-block with its parent link set:
    ///
    /// - fields that are left out keep their initial values;
    /// - a packed word may be given by its named bit ranges instead, the others are then 0;
    /// - counts follow from the arrays and texts that are given;
    /// - entry lengths that are left out are those that the encoder writes;
    /// - the last of several members of the same name counts.
    ///
    /// A derived value, an unknown name, a field that the block's revision or a selecting field
    /// excludes, a value of the wrong type or out of range throws LineError. The record then still
    /// has to be released.
    void fill(const Kor::MessageApi::TQX_TypeLayout& type, void* record, const JsonValue& values);

private:
    friend class RecordFilling;

    const FillPlan& planOf(const Kor::MessageApi::TQX_TypeLayout& type);

    std::vector<std::unique_ptr<FillPlan>> m_plans; ///< by record type

    // Of the record that is being filled and its parents, one after the other.
    std::vector<const JsonValue*> m_given;           ///< by row, null where left out
    std::vector<std::pair<int, size_t>> m_announced; ///< rows of counts, with their elements
};

} // namespace tqx
