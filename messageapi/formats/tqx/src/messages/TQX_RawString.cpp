#include "TQX_RawString.h"

#include "TQX_FieldAccess.h"
#include "TQX_FieldFacts.h"
#include "TQX_RecordAccess.h"

#include "FloatRepresentation.h"
#include "Message.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <utility>

using namespace Kor::MessageApi;

namespace
{

/// Appends the columns of one record to a line.
class RawLine
{
public:
    RawLine(const TQX_TypeLayout& type, const void* record) : m_type(type), m_record(record) {}

    void appendField(const TQX_FieldLayout& field, const TQX_FieldFacts& facts)
    {
        if (m_written)
            m_text += Message::fieldSeparator;
        m_written = true;
        if (!TQX_isPresent(m_type, field, m_record))
            return;
        switch (field.kind) {
        case TQX_FieldKind::Text:
        case TQX_FieldKind::CountedText:
            appendText(field);
            break;
        case TQX_FieldKind::Blocks:
        case TQX_FieldKind::Embedded:
            appendSubBlocks(TQX_elementCount(m_type, field, m_record));
            break;
        default:
            appendElements(field, facts);
            break;
        }
    }

    QString take() { return std::move(m_text); }

private:
    void appendText(const TQX_FieldLayout& field)
    {
        const auto* text = static_cast<const char*>(TQX_element(field, m_record));
        m_text += QLatin1String(text, static_cast<int>(qstrnlen(text, field.elements + 1U)));
    }

    void appendSubBlocks(uint32_t count)
    {
        for (uint32_t i = 0; i < count; ++i)
            m_text += i == 0 ? QLatin1String("submsg") : QLatin1String(" submsg");
    }

    void appendElements(const TQX_FieldLayout& field, const TQX_FieldFacts& facts)
    {
        const unsigned count = TQX_FieldAccess::readableElements(m_type, field, m_record);
        for (unsigned i = 0; i < count; ++i) {
            if (i > 0)
                m_text += QLatin1Char(' ');
            appendElement(field, facts, i);
        }
    }

    void appendElement(const TQX_FieldLayout& field, const TQX_FieldFacts& facts, unsigned index)
    {
        switch (field.type) {
        case TQX_MemberType::F32:
            appendReal<float>(field, facts, index);
            break;
        case TQX_MemberType::F64:
            appendReal<double>(field, facts, index);
            break;
        case TQX_MemberType::Char:
            m_text += QLatin1Char(static_cast<char>(TQX_unsignedValue(field, m_record, index)));
            break;
        case TQX_MemberType::I8:
        case TQX_MemberType::I16:
        case TQX_MemberType::I32:
            appendInteger(TQX_signedValue(field, m_record, index), facts);
            break;
        default:
            appendInteger(TQX_unsignedValue(field, m_record, index), facts);
            break;
        }
    }

    template<typename Real>
    void appendReal(const TQX_FieldLayout& field, const TQX_FieldFacts& facts, unsigned index)
    {
        Real value;
        std::memcpy(&value, TQX_element(field, m_record, index), sizeof value);
        if (Message::useDoNotUseString && TQX_isRealDoNotUse(facts, static_cast<double>(value))) {
            m_text += Message::doNotUseString;
        } else {
            m_text += FloatRepresentation::getString(value, 'f', facts.precision, false);
        }
    }

    template<typename Integer>
    void appendInteger(Integer value, const TQX_FieldFacts& facts)
    {
        if (Message::useDoNotUseString && TQX_isDoNotUse(facts, static_cast<uint64_t>(value))) {
            m_text += Message::doNotUseString;
            return;
        }
        char digits[24];
        const char* end = std::to_chars(digits, digits + sizeof digits, value).ptr;
        m_text += QLatin1String(digits, static_cast<int>(end - digits));
    }

    const TQX_TypeLayout& m_type;
    const void* m_record;
    QString m_text;
    bool m_written = false;
};

} // namespace

QString TQX_rawString(uint32_t recordType, const void* record, const QVector<bool>& fieldMask)
{
    const TQX_TypeLayout& type = *TQX_layout(recordType);
    const TQX_FieldFacts* facts = TQX_fieldFacts(recordType);
    const int count = std::min(fieldMask.size(), static_cast<int>(type.fieldCount));
    RawLine line(type, record);
    for (int i = 0; i < count; ++i) {
        if (fieldMask[i])
            line.appendField(type.fields[i], facts[i]);
    }
    return line.take();
}
