#include "QtPrinters.h"
#include "RandomRecord.h"
#include "Records.h"

#include "TQX_FormatInfo.h"
#include "TQX_Layout.h"

#include "FieldInfo.h"
#include "FieldType.h"
#include "FloatRepresentation.h"
#include "MessageInfo.h"

#include <QLocale>

#include <algorithm>
#include <cstring>

using namespace Kor::MessageApi;

namespace
{

/// Reads one field of a record by the layout's offsets alone.
class Member
{
public:
    Member(const TQX_TypeLayout& type, const TQX_FieldLayout& field, const void* record)
        : m_type(type), m_field(field), m_record(static_cast<const unsigned char*>(record))
    {
    }

    bool isPresent() const
    {
        switch (m_field.presence) {
        case TQX_Presence::Always:
            return true;
        case TQX_Presence::Selected:
            return other(m_field.selector).number(0) == m_field.presenceValue;
        default:
            return hasRevision();
        }
    }

    bool isText() const
    {
        return m_field.kind == TQX_FieldKind::Text || m_field.kind == TQX_FieldKind::CountedText;
    }

    unsigned count() const
    {
        const TQX_FieldLayout& counted =
            m_field.kind == TQX_FieldKind::Bits ? m_type.fields[m_field.parent] : m_field;
        unsigned elements = m_field.elements;
        if (counted.count >= 0) {
            elements = static_cast<unsigned>(other(counted.count).number(0));
            if (counted.countsBytes)
                elements /= bytesOf(counted.type);
        }
        return elements + (isText() ? 1 : 0);
    }

    /// Integers and characters, signed ones in two's complement.
    uint64_t number(unsigned index) const
    {
        switch (m_field.type) {
        case TQX_MemberType::I8:
            return static_cast<uint64_t>(read<int8_t>(index));
        case TQX_MemberType::I16:
            return static_cast<uint64_t>(read<int16_t>(index));
        case TQX_MemberType::I32:
            return static_cast<uint64_t>(read<int32_t>(index));
        case TQX_MemberType::U16:
            return read<uint16_t>(index);
        case TQX_MemberType::U32:
            return read<uint32_t>(index);
        case TQX_MemberType::U64:
            return read<uint64_t>(index);
        default:
            return read<uint8_t>(index);
        }
    }

    FieldValue value(unsigned index) const
    {
        switch (m_field.type) {
        case TQX_MemberType::F32:
            return FieldValue::f32(read<float>(index));
        case TQX_MemberType::F64:
            return FieldValue::f64(read<double>(index));
        case TQX_MemberType::Char:
            return FieldValue::ch(read<char>(index));
        case TQX_MemberType::I8:
        case TQX_MemberType::I16:
        case TQX_MemberType::I32:
            return FieldValue::i(static_cast<int64_t>(number(index)), m_field.width);
        default:
            return FieldValue::u(number(index), m_field.width);
        }
    }

    QString text(const FieldInfo& info, unsigned index) const
    {
        const FieldValue stored = value(index);
        if (stored.getKind() == FieldKind::Ch)
            return stored.getCh() ? QString(QLatin1Char(stored.getCh())) : QString();
        if (!stored.isFloat()) {
            for (const auto& symbol : info.getSymbolicValues())
                if (symbol.value == stored)
                    return symbol.name;
        }
        if (info.isDoNotUse(stored))
            return Message::useDoNotUseString ? Message::doNotUseString : QString();
        const QString unit = info.getUnit().isEmpty() ? QString() : ' ' + info.getUnit();
        if (stored.getKind() == FieldKind::F32)
            return FloatRepresentation::getString(stored.getF32(), 'f', info.getPrecision(), true) +
                   unit;
        if (stored.getKind() == FieldKind::F64)
            return FloatRepresentation::getString(stored.getF64(), 'f', info.getPrecision(), true) +
                   unit;
        return (stored.getKind() == FieldKind::I
                    ? QLocale().toString(static_cast<qlonglong>(stored.getI64()))
                    : QLocale().toString(static_cast<qulonglong>(stored.getU64()))) +
               unit;
    }

    QString wholeText() const
    {
        QString text;
        for (unsigned i = 0; i < m_field.elements + 1U && number(i) != 0; ++i)
            text += QLatin1Char(read<char>(i));
        return text;
    }

private:
    template<typename T>
    T read(unsigned index) const
    {
        T result;
        std::memcpy(&result, m_record + m_field.recordOffset + index * sizeof(T), sizeof(T));
        return result;
    }

    static unsigned bytesOf(TQX_MemberType type) { return type == TQX_MemberType::U32 ? 4 : 1; }

    Member other(int row) const { return {m_type, m_type.fields[row], m_record}; }

    bool hasRevision() const
    {
        const void* main = m_record;
        for (int link = 0; link < m_type.linksToMain && main; ++link)
            main = static_cast<const KorcgHeader_s*>(main)->korcg_father;
        if (!main)
            return false;
        const unsigned revision = static_cast<const TQX_MainHeader_s*>(main)->Revision;
        return m_field.presence == TQX_Presence::SinceRevision ? revision >= m_field.presenceValue
                                                               : revision == m_field.presenceValue;
    }

    const TQX_TypeLayout& m_type;
    const TQX_FieldLayout& m_field;
    const unsigned char* m_record;
};

/// A value of the same kind, width and bits; NaN equals itself.
void expectSame(const FieldValue& value, const FieldValue& expected)
{
    EXPECT_EQ(value.getKind(), expected.getKind());
    EXPECT_EQ(value.getWidth(), expected.getWidth());
    EXPECT_EQ(value, expected);
}

void checkSubMessages(const FieldInfo& field, const Message& message, unsigned count)
{
    QVector<const Message*> children = message.getSubMessages();
    children.erase(std::remove_if(children.begin(), children.end(),
                                  [&field](const Message* child) {
                                      return child->getInfo() !=
                                             field.getType().getSubMessageInfo();
                                  }),
                   children.end());
    ASSERT_EQ(static_cast<unsigned>(children.size()), count);
    for (unsigned i = 0; i < count; ++i) {
        const Message* child = field.getValue(&message, i).getSubMessage();
        EXPECT_EQ(child, children[static_cast<int>(i)]);
        EXPECT_EQ(child->getParentMessage(), &message);
        EXPECT_EQ(field.getValueUnchecked(&message, i).getSubMessage(), child);
        EXPECT_EQ(field.getValueString(&message, i, true), "submsg");
    }
}

/// What getValue says behind the last value.
std::string failureBehind(const FieldInfo& field, const std::string& name, bool isPresent)
{
    if (!isPresent && field.getName().startsWith("_padding"))
        return "Requesting value for an optional field " + name + " that is not present.";
    if (!isPresent)
        return "Requesting value for a non-present optional field " + name + ".";
    if (field.isRepeated())
        return "Requesting value for an repeated field " + name + " with out of range index.";
    return "Requesting value for a non-repeated field " + name + " using non-zero index.";
}

void checkMessageOfAnotherType(const FieldInfo& field, const std::string& name,
                               const Message* message)
{
    EXPECT_FALSE(field.hasValue(message));
    EXPECT_EQ(field.getNumberOfValues(message), 0U);
    EXPECT_EQ(field.getValueString(message), "");
    EXPECT_EQ(field.getValueString(message, 0, true), "");
    EXPECT_EQ(thrownText([&] { field.getValue(message, 0); }),
              "Requesting value for a field " + name +
                  " that is not present in the given kind of message.");
}

void checkField(const FieldInfo& field, const std::string& name, const Message& message,
                const Member& member)
{
    const unsigned count = member.isPresent() ? member.count() : 0;
    EXPECT_EQ(field.hasValue(&message), count > 0);
    ASSERT_EQ(field.getNumberOfValues(&message), count);
    EXPECT_EQ(thrownText([&] { field.getValue(&message, count); }),
              failureBehind(field, name, member.isPresent()));
    if (field.getType().getKind() == FieldKind::SubMessage) {
        checkSubMessages(field, message, count);
        return;
    }
    for (unsigned i = 0; i < count; ++i) {
        expectSame(field.getValue(&message, i), member.value(i));
        expectSame(field.getValueUnchecked(&message, i), member.value(i));
        EXPECT_EQ(field.getValueString(&message, i, true), member.text(field, i));
    }
    if (member.isText() && count > 0) {
        EXPECT_EQ(field.getValueString(&message), member.wholeText());
    }
}

void checkMessage(const Message& message, const Message& other)
{
    const void* record = RecordReader::recordOf(&message);
    const TQX_TypeLayout& type = *TQX_layout(static_cast<const KorcgHeader_s*>(record)->korcg_type);
    const auto& fields = message.getInfo()->getFieldInfos();
    ASSERT_EQ(fields.size(), type.fieldCount);
    const auto children = message.getSubMessages(); // links the sub-records to their parents
    for (int i = 0; i < fields.size(); ++i) {
        const std::string name = std::string(type.name) + "::" + type.fields[i].name;
        SCOPED_TRACE(name);
        EXPECT_EQ(fields[i]->getName(), type.fields[i].name);
        checkField(*fields[i], name, message, Member(type, type.fields[i], record));
        checkMessageOfAnotherType(*fields[i], name, &other);
        checkMessageOfAnotherType(*fields[i], name, nullptr);
    }
    for (const Message* child : children)
        checkMessage(*child, message);
}

TEST(AllFields, AgreeWithTheRecord)
{
    TQX_FormatInfo::getInstance();
    const TQX_OSNMAKey_Message other(nullptr, false);
    const TQX_EndOfAtt1_Message another(nullptr, false);
    std::mt19937 generator(20);
    unsigned types = 0;
    for (const TQX_MessageType& row : TQX_messageTypes()) {
        const TQX_TypeLayout& type = *TQX_layout(static_cast<uint32_t>(row.recordType));
        for (int round = 0; round < 8; ++round) {
            alignas(TQX_AnyRecord_u) unsigned char storage[sizeof(TQX_AnyRecord_u)];
            type.init(storage);
            fillRandomly(type, storage, generator);
            if (type.blockNumber != 0)
                reinterpret_cast<TQX_MainHeader_s*>(storage)->Revision =
                    static_cast<uint8_t>(round % (type.highestRevision + 2));
            Message::useDoNotUseString = round % 2 == 0;
            const std::unique_ptr<Message> message(TQX_createMessage(storage));
            ASSERT_TRUE(message);
            EXPECT_EQ(message->getInfo()->getName(), type.name);
            checkMessage(*message, message->getInfo() == other.getInfo()
                                       ? static_cast<const Message&>(another)
                                       : other);
            if (testing::Test::HasFailure())
                return;
        }
        ++types;
    }
    Message::useDoNotUseString = true;
    EXPECT_EQ(types, 347U);
}

TEST(AllFields, SubFieldsAreThePartsOfTheirWord)
{
    TQX_FormatInfo::getInstance();
    for (const TQX_MessageType& row : TQX_messageTypes()) {
        const TQX_TypeLayout& type = *TQX_layout(static_cast<uint32_t>(row.recordType));
        const auto& fields = row.info()->getFieldInfos();
        for (int i = 0; i < fields.size(); ++i) {
            QVector<const FieldInfo*> parts;
            for (int k = 0; k < type.fieldCount; ++k)
                if (type.fields[k].parent == i)
                    parts.append(fields[k]);
            EXPECT_EQ(fields[i]->getSubFieldInfos(), parts) << type.name << type.fields[i].name;
        }
    }
}

} // namespace
