#include "tqx/log/schema/RecordShape.h"

#include "ArrayStorage.h"
#include "TQX_RecordAccess.h"
#include "model/Numbering.h"

#include <fmt/format.h>

#include <cstddef>
#include <string_view>

namespace tqx
{

using namespace Kor::MessageApi;
using namespace korcg::generator;

namespace
{

constexpr uint64_t largestMain = 1U << 20U;
constexpr uint64_t largestEntry = 1U << 14U;
constexpr uint64_t alignment = alignof(std::max_align_t) < 8 ? alignof(std::max_align_t) : 8;

/// Where the fields of the header are in every main block's record.
uint32_t headerOffset(std::string_view name)
{
    const std::pair<std::string_view, size_t> members[] = {
        {"Sync1", offsetof(TQX_MainHeader_s, Sync1)},
        {"Sync2", offsetof(TQX_MainHeader_s, Sync2)},
        {"CRC", offsetof(TQX_MainHeader_s, CRC)},
        {"ID", offsetof(TQX_MainHeader_s, ID)},
        {"BlockNumber", offsetof(TQX_MainHeader_s, BlockNumber)},
        {"Revision", offsetof(TQX_MainHeader_s, Revision)},
        {"Length", offsetof(TQX_MainHeader_s, Length)},
        {"TOW", offsetof(TQX_MainHeader_s, TOW)},
        {"TOWc", offsetof(TQX_MainHeader_s, TOWc)},
        {"WNc", offsetof(TQX_MainHeader_s, WNc)},
    };
    for (const auto& [member, offset] : members) {
        if (member == name)
            return static_cast<uint32_t>(offset);
    }
    return 0;
}

class Shaper
{
public:
    Shaper(const Format& format, AddedTypes& types, Errors& errors)
        : m_format(format), m_types(types), m_errors(errors)
    {
    }

    /// Sub-blocks first; the description has been checked for types that hold themselves.
    void shape(size_t index);

private:
    uint64_t placeField(const RecordType& type, size_t row, TQX_FieldLayout& field, uint64_t end);
    static uint64_t elementsOf(const RecordType& type, const Field& field);
    uint32_t leastBytes(const RecordType& type, const AddedType& made) const;
    size_t indexOf(const TQX_FieldLayout& field) const
    {
        return field.recordType - TQX_firstDescribedType;
    }

    const Format& m_format;
    AddedTypes& m_types;
    Errors& m_errors;
};

/// Text has room for its terminating zero, a payload counted in bytes for a partial element.
uint64_t Shaper::elementsOf(const RecordType& type, const Field& field)
{
    const Field& array = field.kind == FieldKind::Bits && field.parent >= 0
                             ? type.fields[static_cast<size_t>(field.parent)]
                             : field;
    const bool hasMore = array.isText() || (array.isCounted() && array.countsBytes);
    return array.isArray() ? static_cast<uint64_t>(array.elements) + (hasMore ? 1 : 0) : 1;
}

uint64_t Shaper::placeField(const RecordType& type, size_t row, TQX_FieldLayout& field,
                            uint64_t end)
{
    const auto place = [&](uint64_t unit, uint64_t bytes) {
        const uint64_t start = (end + unit - 1) / unit * unit;
        field.recordOffset = static_cast<uint32_t>(start);
        return start + bytes;
    };
    if (field.kind == TQX_FieldKind::Blocks)
        return place(alignof(void*), sizeof(void*) + sizeof(ArrayStorage));
    if (field.kind == TQX_FieldKind::Embedded)
        return place(alignment, field.sub->recordSize);
    const uint64_t size = TQX_elementSize(field);
    return place(size, size * elementsOf(type, type.fields[row]));
}

/// The least bytes of an entry of the type on the wire.
uint32_t Shaper::leastBytes(const RecordType& type, const AddedType& made) const
{
    uint32_t bytes = 0;
    for (size_t row = 0; row < type.fields.size(); ++row) {
        const Field& field = type.fields[row];
        if (field.presence != Presence::Always && !field.alwaysSent)
            continue;
        if (field.kind == FieldKind::Embedded) {
            bytes += made.fields[row].sub->described->leastEntry;
        } else if (!field.isCounted()) {
            bytes += static_cast<uint32_t>(wireSize(field));
        }
    }
    return bytes;
}

void Shaper::shape(size_t index)
{
    AddedType& made = *m_types.types[index];
    if (made.layout.recordSize != 0)
        return;
    const RecordType& type = m_format.types[index];
    uint64_t end = type.isMain() ? sizeof(TQX_MainHeader_s) : sizeof(KorcgHeader_s);
    const uint64_t largest = type.isMain() ? largestMain : largestEntry;
    for (size_t row = 0; row < made.fields.size() && end <= largest; ++row) {
        TQX_FieldLayout& field = made.fields[row];
        if (type.fields[row].isHeader) {
            field.recordOffset = headerOffset(field.name);
            continue;
        }
        if (field.sub != nullptr)
            shape(indexOf(field));
        end = placeField(type, row, field, end);
        if (field.kind == TQX_FieldKind::Blocks && field.sub->described->leastEntry == 0) {
            m_errors.add(type.fields[row].where,
                         fmt::format("{}.{}: an entry of {} may take no byte at all", type.name,
                                     field.name, field.sub->name));
        }
    }
    end = (end + alignment - 1) / alignment * alignment;
    if (end > largest) {
        m_errors.add(type.where, fmt::format("a record of {} takes more than {} bytes in memory",
                                             type.name, largest));
    }
    made.layout.recordSize = static_cast<uint32_t>(end);
    made.described.leastEntry = type.isMain() ? 0 : leastBytes(type, made);
}

} // namespace

void shapeRecords(const Format& format, AddedTypes& types, Errors& errors)
{
    Shaper shaper(format, types, errors);
    for (size_t index = 0; index < types.types.size(); ++index)
        shaper.shape(index);
}

} // namespace tqx
