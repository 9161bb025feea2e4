#include "PossibleCodes.h"

#include "FieldRoles.h"

using namespace Kor::MessageApi;

namespace
{

// What a later edition added is written in blocks of its revisions only.
bool isLeftOut(const TQX_FieldLayout& field, unsigned revision)
{
    return field.isAddition &&
           (field.presence == TQX_Presence::OnlyRevision ? revision != field.presenceValue
                                                         : revision < field.presenceValue);
}

// Whether a scalar is still tried when an earlier field did not fit.
bool isAlwaysTried(const TQX_FieldLayout& field, Direction direction, unsigned revision)
{
    if (field.kind != TQX_FieldKind::Value)
        return false;
    if (direction == Direction::Encoding && isLeftOut(field, revision))
        return false;
    return field.alwaysSent || field.presence == TQX_Presence::Always ||
           (direction == Direction::Encoding && field.presence == TQX_Presence::SinceRevision);
}

// Whether the field's code stays when `room` bytes are left of it.
bool hasLastWord(const TQX_TypeLayout& type, int row, uint32_t room, Direction direction,
                 unsigned revision)
{
    for (int i = row + 1; i < type.fieldCount; ++i) {
        if (!isAlwaysTried(type.fields[i], direction, revision))
            continue;
        const uint32_t size = TQX_elementSize(type.fields[i]);
        if (size > room)
            return false;
        room -= size;
    }
    return true;
}

bool canOverflowBuffer(const TQX_TypeLayout& type, int row, Direction direction, unsigned revision)
{
    const TQX_FieldLayout& field = type.fields[row];
    if (direction == Direction::Encoding) {
        if (isLeftOut(field, revision))
            return false;
        // Counted fields end the encoding at once.
        if (field.count >= 0)
            return true;
        // Padding is written for the highest revision alone.
        if (field.presence == TQX_Presence::OnlyRevision && !field.isAddition &&
            (field.presenceValue != type.ownRevision || revision != type.ownRevision))
            return false;
    }
    for (uint32_t room = 0; room < TQX_elementSize(field); ++room) {
        if (hasLastWord(type, row, room, direction, revision))
            return true;
    }
    return false;
}

bool canOverflowRecord(const TQX_TypeLayout& type, const TQX_FieldLayout& field)
{
    if (field.count < 0)
        return false;
    const uint64_t unit = field.countsBytes ? TQX_elementSize(field) : 1;
    return (uint64_t{1} << 8 * TQX_elementSize(type.fields[field.count])) - 1 >=
           (field.elements + 1U) * unit;
}

} // namespace

std::set<int32_t> possibleCodes(const TQX_TypeLayout& type, Direction direction)
{
    std::set<int32_t> codes;
    for (int row = 0; row < type.fieldCount; ++row) {
        const TQX_FieldLayout& field = type.fields[row];
        if (!isOnWire(field) || holdsEntries(field))
            continue;
        for (unsigned revision = 0; revision < 8; ++revision) {
            if (canOverflowBuffer(type, row, direction, revision))
                codes.insert(field.code);
        }
        if (canOverflowRecord(type, field))
            codes.insert(field.code - 1);
    }
    if (direction == Direction::Decoding)
        codes.insert({type.sizeUnderflow, type.internal});
    return codes;
}
