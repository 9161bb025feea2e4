#include "tqx/log/write/RawJson.h"

#include "TQX_LayoutFunctions.h"
#include "tqx/log/record/MemberReader.h"
#include "tqx/log/text/JsonText.h"
#include "tqx/log/text/NumberText.h"
#include "tqx/log/text/TextCache.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace tqx
{

using namespace Kor::MessageApi;

/// How the records of one type are written.
struct RawPlan {
    struct Step {
        MemberReader member;
        std::string key;               ///< with the comma that parts it from the field before
        TextCache cache;               ///< of a single number
        std::unique_ptr<RawPlan> plan; ///< of the sub-block that the field holds
    };

    const TQX_TypeLayout* type;
    std::string opening; ///< of a line, up to the value of "fields"
    std::vector<Step> steps;
};

namespace
{

template<typename Value>
Value load(const void* element)
{
    Value value;
    std::memcpy(&value, element, sizeof value);
    return value;
}

/// A NaN other than the one that "NaN" is read back as.
template<typename Real, typename Bits>
bool isOddNaN(Real value)
{
    const Real usual = std::numeric_limits<Real>::quiet_NaN();
    return std::isnan(value) && load<Bits>(&value) != load<Bits>(&usual);
}

/// Whether a field of a fixed size holds nothing but zeros.
bool isZero(const TQX_FieldLayout& field, const void* record)
{
    const auto* bytes = static_cast<const uint8_t*>(TQX_element(field, record));
    return std::all_of(bytes, bytes + TQX_elementSize(field) * field.elements,
                       [](uint8_t byte) { return byte == 0; });
}

/// Writes records of one line and notes whether something got lost in doing so.
class Writer
{
public:
    explicit Writer(Buffer& buffer) : m_out(buffer) {}

    void writeRecord(RawPlan& plan, const void* record);

    /// Whether all that was written is read back as it stood in the records.
    bool isExact() const { return m_exact; }

private:
    void writeField(RawPlan& plan, RawPlan::Step& step, const void* record);
    void writeNumber(RawPlan::Step& step, const void* record);
    void writeElement(const TQX_FieldLayout& field, const void* element);
    void writeArray(const TQX_TypeLayout& type, const TQX_FieldLayout& field, const void* record);
    void writeText(const TQX_TypeLayout& type, const TQX_FieldLayout& field, const void* record);

    Buffer& m_out;
    bool m_exact = true;
};

void Writer::writeElement(const TQX_FieldLayout& field, const void* element)
{
    switch (field.type) {
    case TQX_MemberType::U8:
        return number::appendUnsigned(m_out, load<uint8_t>(element));
    case TQX_MemberType::I8:
        return number::appendSigned(m_out, load<int8_t>(element));
    case TQX_MemberType::U16:
        return number::appendUnsigned(m_out, load<uint16_t>(element));
    case TQX_MemberType::I16:
        return number::appendSigned(m_out, load<int16_t>(element));
    case TQX_MemberType::U32:
        return number::appendUnsigned(m_out, load<uint32_t>(element));
    case TQX_MemberType::I32:
        return number::appendSigned(m_out, load<int32_t>(element));
    case TQX_MemberType::U64:
        return number::appendUnsigned(m_out, load<uint64_t>(element));
    case TQX_MemberType::F32: {
        const auto value = load<float>(element);
        m_exact = m_exact && !isOddNaN<float, uint32_t>(value);
        return json::appendFloat(m_out, value);
    }
    case TQX_MemberType::F64: {
        const auto value = load<double>(element);
        m_exact = m_exact && !isOddNaN<double, uint64_t>(value);
        return json::appendDouble(m_out, value);
    }
    case TQX_MemberType::Char: {
        const auto value = load<char>(element);
        return json::appendLatin1(m_out, &value, value == 0 ? 0 : 1);
    }
    case TQX_MemberType::Record:
        return;
    }
}

void Writer::writeNumber(RawPlan::Step& step, const void* record)
{
    const TQX_FieldLayout& field = step.member.getField();
    const auto make = [&](Buffer&) {
        m_out.append(step.key);
        writeElement(field, step.member.getElements(record));
    };
    // Texts that are kept would not tell an odd NaN.
    if (field.type == TQX_MemberType::F32 || field.type == TQX_MemberType::F64) {
        make(m_out);
    } else {
        step.cache.append(m_out, step.member.getWord(record), make);
    }
}

void Writer::writeText(const TQX_TypeLayout& type, const TQX_FieldLayout& field, const void* record)
{
    const auto* text = static_cast<const char*>(TQX_element(field, record));
    const size_t capacity = TQX_elementCount(type, field, record) - 1U;
    const void* zero = std::memchr(text, 0, capacity);
    const size_t length =
        zero ? static_cast<size_t>(static_cast<const char*>(zero) - text) : capacity;
    json::appendLatin1(m_out, text, length);
    // The encoder fills a fixed text with zeros and makes a counted one as long as its string.
    if (field.kind == TQX_FieldKind::CountedText)
        m_exact = m_exact && length == capacity;
    for (size_t i = length; i < capacity; ++i)
        m_exact = m_exact && text[i] == 0;
}

void Writer::writeArray(const TQX_TypeLayout& type, const TQX_FieldLayout& field,
                        const void* record)
{
    const uint32_t count = TQX_elementCount(type, field, record);
    const uint32_t size = TQX_elementSize(field);
    const auto* element = static_cast<const uint8_t*>(TQX_element(field, record));
    m_out.append('[');
    for (uint32_t i = 0; i < count; ++i) {
        if (i != 0)
            m_out.append(',');
        writeElement(field, element + size_t{i} * size);
    }
    m_out.append(']');
    // Bytes that do not fill an element are in one that is not shown.
    if (field.countsBytes && TQX_unsignedValue(type.fields[field.count], record) % size != 0)
        m_exact = m_exact && TQX_unsignedValue(field, record, count) == 0;
}

void Writer::writeField(RawPlan& plan, RawPlan::Step& step, const void* record)
{
    if (step.member.isNumber())
        return writeNumber(step, record);
    m_out.append(step.key);
    switch (step.member.getKind()) {
    case RecordPlan::Kind::Array:
        return writeArray(*plan.type, step.member.getField(), record);
    case RecordPlan::Kind::Text:
        return writeText(*plan.type, step.member.getField(), record);
    case RecordPlan::Kind::Embedded:
        return writeRecord(*step.plan, step.member.getElements(record));
    case RecordPlan::Kind::Blocks: {
        const uint32_t count = step.member.countElements(record);
        const char* entry = step.member.getElements(record);
        m_out.append('[');
        for (uint32_t i = 0; i < count; ++i, entry += step.member.getStride()) {
            if (i != 0)
                m_out.append(',');
            writeRecord(*step.plan, entry);
        }
        m_out.append(']');
        return;
    }
    case RecordPlan::Kind::Number:
        return;
    }
}

void Writer::writeRecord(RawPlan& plan, const void* record)
{
    const size_t start = m_out.size();
    for (RawPlan::Step& step : plan.steps) {
        const TQX_FieldLayout& field = step.member.getField();
        if (!step.member.isPresent(record)) {
            // On the wire although the record's revision does not have it.
            m_exact = m_exact && !(field.alwaysSent && !isZero(field, record));
            continue;
        }
        // Padding is worth a word only when it is not what the encoder writes.
        if (field.isPadding && isZero(field, record))
            continue;
        writeField(plan, step, record);
    }
    // The first field brought a comma where the object begins.
    if (m_out.size() == start) {
        m_out.append('{');
    } else {
        m_out.replace(start, '{');
    }
    m_out.append('}');
}

std::unique_ptr<RawPlan> makePlan(const RecordPlan& shown)
{
    auto plan = std::make_unique<RawPlan>();
    plan->type = shown.type;
    plan->opening = "{\"block\":\"" + std::string(shown.type->name) + "\",\"fields\":";
    for (const RecordPlan::Member& member : shown.members) {
        plan->steps.push_back({MemberReader(shown, member),
                               "," + json::key(member.field->name),
                               {},
                               member.plan ? makePlan(*member.plan) : nullptr});
    }
    return plan;
}

} // namespace

RawJson::RawJson(const FieldFilter& shown)
    : m_filter(shown), m_encoded(std::numeric_limits<uint16_t>::max())
{
}

RawJson::~RawJson() = default;

RawPlan& RawJson::planOf(uint32_t recordType)
{
    if (m_plans.size() <= recordType)
        m_plans.resize(recordType + 1);
    std::unique_ptr<RawPlan>& plan = m_plans[recordType];
    if (!plan) {
        plan = makePlan(
            planRecord(*m_filter.getSchema().getType(recordType), m_filter, ShownFields::OnWire));
    }
    return *plan;
}

void RawJson::write(Buffer& out, const DecodedBlock& decoded)
{
    const Block& block = decoded.block;
    RawPlan& plan = planOf(decoded.getHeader().korcg_type);
    if (!plan.type->hasMessage)
        return writeBytes(out, block);
    if (plan.steps.empty())
        return;
    out.append(plan.opening);
    Writer writer(out);
    writer.writeRecord(plan, decoded.record);
    if (m_filter.isEverything()) {
        bool exact = writer.isExact();
        if (exact && !decoded.isCovered()) {
            const int32_t bits =
                TQX_reencodeAs(*plan.type, m_encoded.data(),
                               static_cast<uint16_t>(m_encoded.size()), decoded.record);
            exact = bits == static_cast<int32_t>(block.size) * 8 &&
                    std::memcmp(m_encoded.data(), block.data, block.size) == 0;
        }
        if (!exact) {
            out.append(",\"bytes\":");
            json::appendBase64(out, block.data, block.size);
        }
    }
    out.append("}\n");
}

void RawJson::writeBytes(Buffer& out, const Block& block) const
{
    if (!m_filter.isEverything())
        return;
    out.append("{\"number\":");
    number::appendUnsigned(out, block.getNumber());
    out.append(",\"bytes\":");
    json::appendBase64(out, block.data, block.size);
    out.append("}\n");
}

} // namespace tqx
