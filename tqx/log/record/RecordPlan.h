#pragma once

#include "TQX_FieldFacts.h"
#include "TQX_Layout.h"
#include "tqx/log/record/FieldFilter.h"
#include "tqx_log_export.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace tqx
{

/// What to show of a type's records, in the order of the filter: made once per type, walked for
/// each record.
///
///     const RecordPlan plan = planRecord(*schema.getType(type), FieldFilter(), ShownFields::All);
///     for (const RecordPlan::Member& member : plan.members)
///         if (member.kind == RecordPlan::Kind::Number)
///             show(loadWord(TQX_element(*member.field, record), member.size), member.parts);
struct RecordPlan {
    enum class Kind : uint8_t {
        Number,   ///< one number or character, with the bit ranges that are packed in it
        Text,     ///< characters up to the first zero
        Array,    ///< a fixed or counted number of numbers
        Embedded, ///< at most one sub-block
        Blocks,   ///< an array of sub-blocks
    };

    /// A number without which a derived value is not available.
    struct Input {
        unsigned linksUp; ///< parent links from the record of the value to that of the number
        const Kor::MessageApi::TQX_FieldLayout* field;
        const Kor::MessageApi::TQX_FieldFacts* facts;
    };

    /// A field whose value is shown.
    struct Part {
        const Kor::MessageApi::TQX_FieldLayout* field;
        const Kor::MessageApi::TQX_FieldFacts* facts;
        /// As found by findInputs().
        std::vector<Input> inputs;
    };

    /// A member of the record, read once.
    struct Member {
        /// Where it is. For bit ranges this is their number, shown or not; TQX_isPresent() of it
        /// holds for the parts.
        const Kor::MessageApi::TQX_FieldLayout* field;
        const Kor::MessageApi::TQX_FieldFacts* facts;
        Kind kind;
        bool isOptional; ///< whether records may lack it
        uint32_t size;   ///< of an element in bytes; of sub-blocks that of their records
        /// For a number: itself and its bit ranges, as far as they are shown. For anything else:
        /// itself.
        std::vector<Part> parts;
        std::unique_ptr<RecordPlan> plan; ///< of the sub-blocks
    };

    const Kor::MessageApi::TQX_TypeLayout* type;
    std::vector<Member> members;
    bool isWhole = true; ///< whether the filter left nothing out that could be shown
};

/// Which fields are worth showing, before a filter is applied.
enum class ShownFields : uint8_t {
    All,
    OnWire,        ///< those with bytes of their own: no bit ranges, no derived values
    WithoutFiller, ///< no header but time of week and week, no padding, unless the filter names
                   ///< them
    WithoutHeader, ///< no header, unless the filter names fields of it
};

/// The types of the records that enclose a sub-block, from the main block on.
using OwnerTypes = std::vector<const Kor::MessageApi::TQX_TypeLayout*>;

/// Makes the plan of a type, sub-blocks included. `owners` are those of a sub-block's type. Layouts
/// and facts live as long as the schema; the filter is needed during the call only.
TQX_LOG_API RecordPlan planRecord(const Kor::MessageApi::TQX_TypeLayout& type,
                                  const FieldFilter& filter, ShownFields shown,
                                  const OwnerTypes& owners = {});

/// The numbers without which a derived value is not available; those in owners that are not given
/// are left out.
TQX_LOG_API std::vector<RecordPlan::Input> findInputs(const Kor::MessageApi::TQX_TypeLayout& type,
                                                      const Kor::MessageApi::TQX_FieldFacts& facts,
                                                      const OwnerTypes& owners);

/// Whether the field belongs to the header of a main block, TOWc included.
TQX_LOG_API bool isHeaderField(const Kor::MessageApi::TQX_TypeLayout& type,
                               const Kor::MessageApi::TQX_FieldLayout& field);

} // namespace tqx
