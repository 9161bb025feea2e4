#include "tqx/log/inspect/PieceText.h"

#include "TQX_RecordAccess.h"
#include "tqx/log/record/Members.h"
#include "tqx/log/text/JsonText.h"

#include "FieldInfo.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>

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

FieldValue valueOf(const TQX_FieldLayout& field, uint64_t stored)
{
    switch (field.type) {
    case TQX_MemberType::F32: {
        const auto bits = static_cast<uint32_t>(stored);
        float value;
        std::memcpy(&value, &bits, sizeof value);
        return FieldValue::f32(value);
    }
    case TQX_MemberType::F64: {
        double value;
        std::memcpy(&value, &stored, sizeof value);
        return FieldValue::f64(value);
    }
    case TQX_MemberType::Char:
        return FieldValue::ch(static_cast<char>(stored));
    default:
        return TQX_isSigned(field) ? FieldValue::i(static_cast<int64_t>(stored), field.width)
                                   : FieldValue::u(stored, field.width);
    }
}

std::string storedText(const FieldValue& value)
{
    if (value.getKind() != FieldKind::Ch)
        return value.toString().toStdString();
    const char character = value.getCh();
    return quoted(&character, 1);
}

std::string meaningOf(const FieldValue& value, const FieldInfo* info)
{
    if (!info)
        return "";
    if (info->isDoNotUse(value))
        return "not available";
    if (const QString* name = info->findSymbolicValue(value))
        return name->toStdString();
    if (value.getKind() == FieldKind::Ch)
        return "";
    // Numbers far from what the field is meant for would be hundreds of digits long.
    constexpr size_t longest = 24;
    std::string text = info->toScaledString(value).toStdString();
    if (text.size() > longest && value.isFloat())
        text = storedText(value);
    if (info->getUnit().isEmpty())
        return text == storedText(value) || value.isFloat() ? "" : text;
    return text + " " + info->getUnit().toStdString();
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
        if (piece.field && !isText && piece.size > bytesPerRow)
            text.name += fmt::format("[{}]", at);
        else if (at != 0)
            text.name.clear();
        if (isText)
            text.stored = textOf(bytes + at, count);
        else if (piece.size == 0)
            text.value = "empty";
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

std::vector<PieceText> textsOf(const BlockPiece& piece, const uint8_t* block, const FieldInfo* info)
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
    const FieldValue value = valueOf(*piece.field, piece.stored);
    std::string bytes = piece.kind == Kind::Derived ? "derived" : bitsOf(*piece.field);
    if (piece.kind == Kind::Number)
        bytes = hex(block + piece.offset, piece.size);
    const bool isUnset = isContinuousTime(*piece.field) && piece.stored == noContinuousTime;
    return {{bytes, nameOf(piece), storedText(value),
             isUnset ? "not available" : meaningOf(value, info)}};
}

} // namespace tqx
