#include "emit/codec/Shape.h"

#include "model/Names.h"

namespace korcg::generator
{

namespace
{

bool isFixed(const Field& field)
{
    const bool fixedKind = field.kind == FieldKind::Value || field.kind == FieldKind::Array ||
                           field.kind == FieldKind::Text;
    return fixedKind && field.presence != Presence::Selected;
}

bool isRead(const Field& field, int revision)
{
    if (field.alwaysSent || field.presence == Presence::Always)
        return true;
    return field.presence == Presence::SinceRevision ? revision >= field.presenceValue
                                                     : revision == field.presenceValue;
}

} // namespace

Shape shapeOf(const RecordType& type)
{
    Shape shape;
    bool subBlocks = false;
    for (int row = 0; row < static_cast<int>(type.fields.size()); ++row) {
        const Field& field = type.fields[static_cast<std::size_t>(row)];
        if (!field.onWire())
            continue;
        if (!isFixed(field) || !shape.tail.empty()) {
            if (isFixed(field) || (subBlocks && field.isCounted()))
                shape.straight = false;
            subBlocks = subBlocks || !field.isCounted();
            shape.tail.push_back(row);
            continue;
        }
        shape.head.push_back(row);
        shape.conditional =
            shape.conditional || (field.presence != Presence::Always && !field.alwaysSent);
        for (int revision = 0; revision < 8; ++revision) {
            if (isRead(field, revision)) {
                shape.headBytes[static_cast<std::size_t>(revision)] +=
                    bytesOf(field.type) * field.elements;
            }
        }
    }
    return shape;
}

bool isLoadedByWord(const RecordType& type, int index)
{
    const Field& field = type.fields[static_cast<std::size_t>(index)];
    const auto next = static_cast<std::size_t>(index) + 1;
    const bool split = next < type.fields.size() && type.fields[next].parent == index;
    return field.kind == FieldKind::CountedArray && (split || bytesOf(field.type) > 1);
}

const Field* onlyBlocks(const RecordType& type, const Shape& shape)
{
    if (shape.tail.size() != 1)
        return nullptr;
    const Field& field = type.fields[static_cast<std::size_t>(shape.tail.front())];
    return field.kind == FieldKind::Blocks && field.presence == Presence::Always ? &field : nullptr;
}

} // namespace korcg::generator
