#include "tqx/log/inspect/PieceText.h"

#include "TQX_FieldFacts.h"
#include "TQX_RecordAccess.h"
#include "tqx/log/record/Members.h"
#include "tqx/log/text/JsonText.h"
#include "tqx/log/value/FieldText.h"

#include <fmt/format.h>

#include <algorithm>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

using Kind = BlockPiece::Kind;

std::string hex(const uint8_t* bytes, uint32_t count)
{
    return fmt::format("{:02x}", fmt::join(bytes, bytes + count, " "));
}

std::string quoted(const char* text, size_t length)
{
    Buffer buffer;
    json::appendLatin1(buffer, text, length);
    return std::string(buffer.view());
}

/// Characters without the zeros that fill them up.
std::string textOf(const uint8_t* bytes, uint32_t count)
{
    while (count != 0 && bytes[count - 1] == 0)
        --count;
    return count == 0 ? "" : quoted(reinterpret_cast<const char*>(bytes), count);
}

const TQX_FieldFacts& factsOf(const BlockPiece& piece)
{
    return TQX_fieldFacts(piece.type->recordType)[piece.field - piece.type->fields];
}

/// The value as it stands in the block, or scaled and by its name, without a unit.
struct ValueText {
    std::string text;
    bool isNumber; ///< not a name
};

ValueText valueText(const BlockPiece& piece, bool isStored, std::string* unit = nullptr)
{
    const TQX_FieldFacts& facts = factsOf(piece);
    const FieldText field(*piece.field, facts, false, isStored);
    Buffer buffer;
    const bool isNumber = field.append(buffer, piece.stored);
    if (unit)
        *unit = field.getUnit();
    return {std::string(buffer.view()), isNumber};
}

std::string storedText(const BlockPiece& piece)
{
    if (piece.field->type != TQX_MemberType::Char)
        return valueText(piece, true).text;
    const auto character = static_cast<char>(piece.stored);
    return quoted(&character, 1);
}

bool isNotAvailable(const BlockPiece& piece)
{
    const bool isUnset = isContinuousTime(*piece.field) && piece.stored == noContinuousTime;
    if (isUnset || !piece.hasInputs)
        return true;
    const MemberBits bits(*piece.field, false);
    if (bits.isCharacter())
        return false;
    return bits.isReal() ? TQX_isRealDoNotUse(factsOf(piece), bits.real(piece.stored))
                         : TQX_isDoNotUse(factsOf(piece), piece.stored);
}

std::string meaningOf(const BlockPiece& piece)
{
    if (isNotAvailable(piece))
        return "not available";
    std::string unit;
    auto [text, isNumber] = valueText(piece, false, &unit);
    if (!isNumber)
        return text;
    const MemberBits bits(*piece.field, false);
    if (bits.isCharacter())
        return "";
    // Numbers far from what the field is meant for would be hundreds of digits long.
    constexpr size_t longest = 24;
    const std::string stored = storedText(piece);
    if (text.size() > longest && bits.isReal())
        text = stored;
    if (unit.empty())
        return text == stored || bits.isReal() ? "" : text;
    return text + unit;
}

std::string nameOf(const BlockPiece& piece)
{
    const size_t depth = piece.depth + (piece.kind == Kind::Bits ? 1 : 0);
    std::string name(2 * depth, ' ');
    if (!piece.field)
        return name + (piece.kind == Kind::Unknown ? "(unknown)" : piece.type->name);
    name += piece.field->name;
    const bool isEmbedded = piece.field->kind == TQX_FieldKind::Embedded;
    if (piece.kind == Kind::Run || isEmbedded)
        return name;
    const bool isEntry = piece.kind == Kind::Entry;
    if (isEntry || piece.field->elements > 1 || piece.index > 0)
        name += fmt::format("[{}]", piece.index);
    return name;
}

std::string bitsOf(const TQX_FieldLayout& field)
{
    return field.width == 1 ? fmt::format("bit {}", field.shift)
                            : fmt::format("bits {}-{}", field.shift, field.shift + field.width - 1);
}

std::vector<PieceText> runTexts(const BlockPiece& piece, const uint8_t* bytes)
{
    const bool isText = piece.field && (piece.field->kind == TQX_FieldKind::Text ||
                                        piece.field->kind == TQX_FieldKind::CountedText);
    std::vector<PieceText> texts;
    for (uint32_t at = 0; at < piece.size || texts.empty(); at += bytesPerRow) {
        const uint32_t count = std::min(bytesPerRow, piece.size - at);
        PieceText text = {hex(bytes + at, count), nameOf(piece), "", ""};
        if (piece.field && !isText && piece.size > bytesPerRow) {
            text.name += fmt::format("[{}]", at);
        } else if (at != 0) {
            text.name.clear();
        }
        if (isText) {
            text.stored = textOf(bytes + at, count);
        } else if (piece.size == 0) {
            text.value = "empty";
        }
        texts.push_back(std::move(text));
    }
    return texts;
}

PieceText entryText(const BlockPiece& piece)
{
    std::string value = TQX_layout(piece.field->recordType)->name;
    if (piece.size != 0)
        value += fmt::format(", {} bytes", piece.size);
    return {"", nameOf(piece), "", value};
}

} // namespace

std::vector<PieceText> textsOf(const BlockPiece& piece, const uint8_t* block)
{
    switch (piece.kind) {
    case Kind::Run:
    case Kind::Unknown:
        return runTexts(piece, block + piece.offset);
    case Kind::Entry:
        return {entryText(piece)};
    case Kind::Missing:
        return {{"", nameOf(piece), "",
                 fmt::format("missing, {} {}", piece.size, piece.size == 1 ? "byte" : "bytes")}};
    case Kind::TooMany:
        return {{"", nameOf(piece), "",
                 fmt::format("too many, there is room for {}", piece.field->elements)}};
    case Kind::TooLong:
        return {{"", nameOf(piece), "", fmt::format("longer than its {} bytes", piece.size)}};
    case Kind::Number:
    case Kind::Bits:
    case Kind::Derived:
        break;
    }
    std::string bytes = piece.kind == Kind::Derived ? "derived" : bitsOf(*piece.field);
    if (piece.kind == Kind::Number)
        bytes = hex(block + piece.offset, piece.size);
    return {{bytes, nameOf(piece), storedText(piece), meaningOf(piece)}};
}

} // namespace tqx
