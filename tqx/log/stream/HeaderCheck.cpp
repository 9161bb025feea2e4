#include "tqx/log/stream/HeaderCheck.h"

#include "TQX_Format.h"
#include "TQX_Layout.h"
#include "TQX_RecordAccess.h"

#include <algorithm>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

constexpr size_t fullHeader = 14;
constexpr size_t alignment = 4;

/// Whether every block of that revision has the field.
bool isAlwaysThere(const TQX_FieldLayout& field, unsigned revision)
{
    if (field.alwaysSent)
        return true;
    switch (field.presence) {
    case TQX_Presence::SinceRevision:
        return revision >= field.presenceValue;
    case TQX_Presence::OnlyRevision:
        return revision == field.presenceValue;
    case TQX_Presence::Selected:
        return false;
    case TQX_Presence::Always:
        break;
    }
    return true;
}

struct Range {
    size_t least = fullHeader;
    bool isFixed = true; ///< no longer than the least, filled up to the alignment
};

Range lengthsOf(const TQX_TypeLayout& type, unsigned revision)
{
    Range range;
    range.isFixed = revision <= type.highestRevision;
    for (size_t i = 0; i < type.fieldCount; ++i) {
        const TQX_FieldLayout& field = type.fields[i];
        if (field.kind == TQX_FieldKind::Bits || field.kind == TQX_FieldKind::Derived)
            continue;
        const bool isSimple = field.kind == TQX_FieldKind::Value ||
                              field.kind == TQX_FieldKind::Array ||
                              field.kind == TQX_FieldKind::Text;
        if (!isSimple || field.wireOffset < 0 || field.presence == TQX_Presence::Selected) {
            range.isFixed = false;
        } else if (isAlwaysThere(field, revision)) {
            range.least = std::max(range.least, static_cast<size_t>(field.wireOffset) +
                                                    TQX_elementSize(field) * field.elements);
        }
    }
    return range;
}

} // namespace

bool isPlausibleHeader(uint16_t id, size_t length, const Schema& schema)
{
    const TQX_TypeLayout* type = schema.getBlockType(TQX_blockNumberOf(id));
    if (type == nullptr)
        return false;
    const Range range = lengthsOf(*type, TQX_revisionOf(id));
    return length >= range.least && (!range.isFixed || length < range.least + alignment);
}

} // namespace tqx
