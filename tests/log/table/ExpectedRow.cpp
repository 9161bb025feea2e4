#include "ExpectedRow.h"

#include "ArrowText.h"
#include "TQX_FieldFacts.h"
#include "tqx/log/value/Scale.h"

#include <cstddef>
#include <cstring>

using namespace Kor::MessageApi;

namespace
{

bool isReal(const TQX_FieldLayout& field)
{
    return field.type == TQX_MemberType::F32 || field.type == TQX_MemberType::F64;
}

double realValue(const TQX_FieldLayout& field, const void* record, uint32_t index)
{
    const void* element = TQX_element(field, record, index);
    if (field.type == TQX_MemberType::F32) {
        float value = 0;
        std::memcpy(&value, element, sizeof value);
        return static_cast<double>(value);
    }
    double value = 0;
    std::memcpy(&value, element, sizeof value);
    return value;
}

uint64_t bitsOf(const TQX_FieldLayout& field, const void* record, uint32_t index)
{
    return TQX_isSigned(field) ? static_cast<uint64_t>(TQX_signedValue(field, record, index))
                               : TQX_unsignedValue(field, record, index);
}

bool isDoNotUse(const TQX_FieldLayout& field, const TQX_FieldFacts& facts, const void* record,
                uint32_t index)
{
    if (isReal(field))
        return TQX_isRealDoNotUse(facts, realValue(field, record, index));
    if (!facts.has(TQX_FieldFacts::Whole))
        return TQX_isDoNotUse(facts, bitsOf(field, record, index));
    uint32_t unused = 0;
    for (uint32_t i = 0; i < field.elements; ++i)
        unused += TQX_isDoNotUse(facts, bitsOf(field, record, i)) ? 1 : 0;
    return unused == field.elements;
}

std::string latin1(const char* text, size_t capacity)
{
    std::string utf8;
    for (size_t i = 0; i < capacity && text[i] != 0; ++i) {
        const auto code = static_cast<unsigned char>(text[i]);
        if (code < 0x80) {
            utf8 += text[i];
        } else {
            utf8 += static_cast<char>(0xc0 + code / 64);
            utf8 += static_cast<char>(0x80 + code % 64);
        }
    }
    return quoted(utf8);
}

std::string integerText(const TQX_FieldLayout& field, const TQX_FieldFacts& facts,
                        const void* record, uint32_t index, Values values)
{
    const uint64_t bits = bitsOf(field, record, index);
    const std::string digits =
        TQX_isSigned(field) ? std::to_string(static_cast<int64_t>(bits)) : std::to_string(bits);
    if (values == Values::Stored)
        return digits;
    if (const TQX_NamedValues names = TQX_namedValues(facts); !names.empty()) {
        for (const TQX_NamedValue named : names) {
            if (static_cast<uint64_t>(named.value) == bits)
                return quoted(std::string(named.name));
        }
        return quoted(digits);
    }
    if (TQX_scale(facts) == 0)
        return digits;
    const double value = TQX_isSigned(field) ? static_cast<double>(static_cast<int64_t>(bits))
                                             : static_cast<double>(bits);
    return realText(tqx::Scale(TQX_scale(facts)).apply(value));
}

std::string numberText(const TQX_TypeLayout& type, uint32_t row, const void* record, uint32_t index,
                       Values values)
{
    const TQX_FieldLayout& field = type.fields[row];
    const TQX_FieldFacts& facts = TQX_fieldFacts(type.recordType)[row];
    if (field.type == TQX_MemberType::Char)
        return latin1(static_cast<const char*>(TQX_element(field, record, index)), 1);
    if (values == Values::Shown &&
        (isDoNotUse(field, facts, record, index) || !TQX_hasInputs(facts, record)))
        return "null";
    if (!isReal(field))
        return integerText(field, facts, record, index, values);
    const double value = realValue(field, record, index);
    const bool isScaled = values == Values::Shown && TQX_scale(facts) != 0;
    return realText(isScaled ? tqx::Scale(TQX_scale(facts)).apply(value) : value);
}

std::string fieldText(const TQX_TypeLayout& type, uint32_t row, const void* record, Values values)
{
    const TQX_FieldLayout& field = type.fields[row];
    if (!TQX_isPresent(type, field, record))
        return "null";
    const auto entryText = [&](uint32_t index) {
        return "{" +
               expectedFields(*TQX_layout(field.recordType), TQX_element(field, record, index),
                              values) +
               "}";
    };
    if (field.kind == TQX_FieldKind::Embedded)
        return entryText(0);
    if (field.kind == TQX_FieldKind::Text || field.kind == TQX_FieldKind::CountedText) {
        return latin1(static_cast<const char*>(TQX_element(field, record)),
                      TQX_elementCount(type, field, record) - 1);
    }
    const bool isPart = field.kind == TQX_FieldKind::Bits;
    const TQX_FieldKind kind = isPart ? type.fields[field.parent].kind : field.kind;
    if (kind == TQX_FieldKind::Value || kind == TQX_FieldKind::Derived)
        return numberText(type, row, record, 0, values);
    std::string text = "[";
    const uint32_t count = TQX_elementCount(type, field, record);
    for (uint32_t i = 0; i < count; ++i) {
        text += (i == 0 ? "" : ",") + (kind == TQX_FieldKind::Blocks
                                           ? entryText(i)
                                           : numberText(type, row, record, i, values));
    }
    return text + "]";
}

bool isShown(const TQX_TypeLayout& type, const TQX_FieldLayout& field)
{
    if (field.isPadding)
        return false;
    const std::string name = field.name;
    const bool isHeader =
        type.blockNumber != 0 && field.recordOffset <= offsetof(TQX_MainHeader_s, WNc);
    return !isHeader || name == "TOW" || name == "WNc";
}

void append(std::string& text, const std::string& name, const std::string& value)
{
    text += (text.empty() ? "" : ",") + name + "=" + value;
}

} // namespace

std::string expectedFields(const TQX_TypeLayout& type, const void* record, Values values)
{
    std::string text;
    for (uint32_t row = 0; row < type.fieldCount; ++row) {
        if (isShown(type, type.fields[row]))
            append(text, type.fields[row].name, fieldText(type, row, record, values));
    }
    return text;
}

std::string expectedIdentity(const TQX_TypeLayout& type, const void* record,
                             const std::string& prefix)
{
    std::string text;
    for (uint32_t row = 0; row < type.fieldCount; ++row) {
        if (TQX_fieldFacts(type.recordType)[row].has(TQX_FieldFacts::Identifying)) {
            append(text, prefix + type.fields[row].name,
                   fieldText(type, row, record, Values::Shown));
        }
    }
    return text;
}

std::string expectedTime(const void* record)
{
    const auto& header = *static_cast<const TQX_MainHeader_s*>(record);
    if (header.TOW == 0xffffffff || header.WNc == 0xffff)
        return "null";
    const double seconds = 315964800.0 + header.WNc * 604800.0 + header.TOW / 1000.0;
    if (seconds > 9223372036.0)
        return "null";
    const int64_t millis = 315964800000 + header.WNc * int64_t{604800000} + header.TOW;
    return std::to_string(millis * 1000000);
}
