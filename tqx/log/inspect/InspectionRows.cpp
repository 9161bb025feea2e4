#include "tqx/log/inspect/InspectionRows.h"

#include "TQX_FieldFacts.h"
#include "TQX_RecordAccess.h"
#include "tqx/log/record/Members.h"
#include "tqx/log/text/JsonText.h"
#include "tqx/log/value/FieldText.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

using Kind = BlockPiece::Kind;
using RowKind = InspectionRow::Kind;

std::string quoted(const char* text, size_t length)
{
    Buffer buffer;
    json::appendLatin1(buffer, text, length);
    return std::string(buffer.view());
}

RowKind kindOf(const BlockPiece& piece)
{
    switch (piece.kind) {
    case Kind::Number:
        return RowKind::Value;
    case Kind::Run:
        return isText(*piece.field) ? RowKind::Text : RowKind::Bytes;
    case Kind::Bits:
        return RowKind::Bits;
    case Kind::Derived:
        return RowKind::Derived;
    case Kind::Entry:
        return RowKind::SubBlock;
    case Kind::Missing:
        return RowKind::Missing;
    case Kind::TooMany:
        return RowKind::TooMany;
    case Kind::TooLong:
        return RowKind::TooLong;
    case Kind::Unknown:
        break;
    }
    return RowKind::Unknown;
}

std::string labelOf(const BlockPiece& piece)
{
    if (!piece.field)
        return piece.kind == Kind::Unknown ? "(unknown)" : piece.type->name;
    const bool isSingle = piece.field->elements <= 1 && piece.index == 0;
    if (piece.kind == Kind::Run || piece.field->kind == TQX_FieldKind::Embedded ||
        (isSingle && piece.kind != Kind::Entry))
        return piece.field->name;
    return fmt::format("{}[{}]", piece.field->name, piece.index);
}

const TQX_FieldFacts& factsOf(const BlockPiece& piece)
{
    return TQX_factsOf(*piece.type, *piece.field);
}

std::string rawText(const BlockPiece& piece)
{
    if (piece.field->type == TQX_MemberType::Char) {
        const auto character = static_cast<char>(piece.stored);
        return quoted(&character, 1);
    }
    Buffer buffer;
    FieldText(*piece.field, factsOf(piece), false, true).append(buffer, piece.stored);
    return std::string(buffer.view());
}

bool isAvailable(const BlockPiece& piece)
{
    const bool isUnset = isContinuousTime(*piece.field) && piece.stored == noContinuousTime;
    if (isUnset || !piece.hasInputs)
        return false;
    const MemberBits bits(*piece.field, false);
    if (bits.isCharacter() || piece.isWhole)
        return true;
    return bits.isReal() ? !TQX_isRealDoNotUse(factsOf(piece), bits.real(piece.stored))
                         : !TQX_isDoNotUse(factsOf(piece), piece.stored);
}

/// Sets the value of a number, character or bit range.
void setValue(InspectionRow& row, const BlockPiece& piece)
{
    row.raw = rawText(piece);
    row.isAvailable = isAvailable(piece);
    if (!row.isAvailable || piece.isWhole)
        return;
    const FieldText field(*piece.field, factsOf(piece), false, false);
    Buffer buffer;
    const bool isNumber = field.append(buffer, piece.stored);
    std::string text(buffer.view());
    if (!isNumber) {
        row.name = std::move(text);
        return;
    }
    const MemberBits bits(*piece.field, false);
    if (bits.isCharacter())
        return;
    // Numbers far from what the field is meant for would be hundreds of digits long.
    constexpr size_t longest = 24;
    if (text.size() > longest && bits.isReal())
        text = row.raw;
    row.unit = field.getUnit();
    if (!row.unit.empty() && row.unit.front() == ' ')
        row.unit.erase(0, 1);
    if (!row.unit.empty() || (text != row.raw && !bits.isReal()))
        row.scaled = std::move(text);
}

} // namespace

std::string quotedText(const uint8_t* bytes, uint32_t count)
{
    while (count != 0 && bytes[count - 1] == 0)
        --count;
    return count == 0 ? "" : quoted(reinterpret_cast<const char*>(bytes), count);
}

int InspectionRows::parentOf(const BlockPiece& piece) const
{
    if (piece.kind == Kind::Bits)
        return m_value;
    return piece.depth == 0 ? InspectionRow::none : m_subBlocks[piece.depth - 1];
}

void InspectionRows::describe(InspectionRow& row, const BlockPiece& piece) const
{
    switch (piece.kind) {
    case Kind::Number:
    case Kind::Bits:
    case Kind::Derived:
        return setValue(row, piece);
    case Kind::Run:
        if (row.kind == RowKind::Text)
            row.raw = quotedText(m_block + piece.offset, piece.size);
        return;
    case Kind::Missing:
        row.error = fmt::format("missing, {} {}", piece.size, piece.size == 1 ? "byte" : "bytes");
        return;
    case Kind::TooMany:
        row.error = fmt::format("too many, there is room for {}", piece.field->elements);
        return;
    case Kind::TooLong:
        row.error = fmt::format("longer than its {} bytes", piece.size);
        return;
    case Kind::Entry:
    case Kind::Unknown:
        return;
    }
}

void InspectionRows::add(const BlockPiece& piece)
{
    InspectionRow row;
    row.kind = kindOf(piece);
    row.depth = piece.depth + (piece.kind == Kind::Bits ? 1 : 0);
    row.parent = parentOf(piece);
    row.type = piece.type;
    row.field = piece.field;
    row.index = piece.index;
    row.offset = piece.offset;
    const bool hasBytes = row.kind == RowKind::Value || row.kind == RowKind::Text ||
                          row.kind == RowKind::Bytes || row.kind == RowKind::Unknown;
    if (hasBytes) {
        row.size = piece.size;
    } else {
        row.stated = piece.size;
    }
    if (piece.kind == Kind::Bits)
        row.size = m_rows[static_cast<size_t>(m_value)].size;
    row.label = labelOf(piece);
    const int around = piece.depth == 0 ? InspectionRow::none : m_subBlocks[piece.depth - 1];
    if (around != InspectionRow::none)
        row.path = m_rows[static_cast<size_t>(around)].path + '.';
    row.path += row.label;
    describe(row, piece);

    const auto index = static_cast<int>(m_rows.size());
    if (row.kind == RowKind::Value)
        m_value = index;
    if (row.kind == RowKind::SubBlock) {
        m_subBlocks.resize(piece.depth);
        m_subBlocks.push_back(index);
    }
    m_rows.push_back(std::move(row));
}

std::vector<InspectionRow> InspectionRows::take()
{
    for (const InspectionRow& row : m_rows) {
        if (row.kind == RowKind::Bits || row.kind == RowKind::SubBlock || row.size == 0)
            continue;
        for (int around = row.parent; around != InspectionRow::none;) {
            InspectionRow& subBlock = m_rows[static_cast<size_t>(around)];
            subBlock.size = row.offset + row.size - subBlock.offset;
            around = subBlock.parent;
        }
    }
    return std::move(m_rows);
}

} // namespace tqx
