#include "RandomRecord.h"
#include "Records.h"
#include "TQX_MessageAccessors.h"

#include "TQX_FormatInfo.h"
#include "TQX_RecordAccess.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <vector>

using namespace Kor::MessageApi;

namespace
{

template<typename Value>
constexpr TQX_MemberType memberTypeOf = TQX_MemberType::Record;
template<>
constexpr TQX_MemberType memberTypeOf<unsigned char> = TQX_MemberType::U8;
template<>
constexpr TQX_MemberType memberTypeOf<signed char> = TQX_MemberType::I8;
template<>
constexpr TQX_MemberType memberTypeOf<char> = TQX_MemberType::Char;
template<>
constexpr TQX_MemberType memberTypeOf<unsigned short> = TQX_MemberType::U16;
template<>
constexpr TQX_MemberType memberTypeOf<short> = TQX_MemberType::I16;
template<>
constexpr TQX_MemberType memberTypeOf<unsigned int> = TQX_MemberType::U32;
template<>
constexpr TQX_MemberType memberTypeOf<int> = TQX_MemberType::I32;
template<>
constexpr TQX_MemberType memberTypeOf<unsigned long long> = TQX_MemberType::U64;
template<>
constexpr TQX_MemberType memberTypeOf<float> = TQX_MemberType::F32;
template<>
constexpr TQX_MemberType memberTypeOf<double> = TQX_MemberType::F64;

using Rows = std::vector<const FieldAccessor*>;

const std::map<unsigned, Rows>& accessorsByType()
{
    static const std::map<unsigned, Rows> table = [] {
        std::map<unsigned, Rows> result;
        for (const FieldAccessor& row : fieldAccessors())
            result[static_cast<unsigned>(row.recordType)].push_back(&row);
        return result;
    }();
    return table;
}

/// Compares what one message gives with its record, field by field.
class MessageCheck
{
public:
    explicit MessageCheck(const Message& message)
        : m_message(message), m_record(RecordReader::recordOf(&message)),
          m_type(*TQX_layout(TQX_AS_KORCG_HEADER(m_record)->korcg_type))
    {
    }

    void run()
    {
        const Rows& rows = accessorsByType().at(m_type.recordType);
        ASSERT_EQ(rows.size(), m_type.fieldCount);
        m_message.getSubMessages(); // links the sub-records to their parents
        for (const FieldAccessor* row : rows) {
            m_field = &m_type.fields[row->field];
            SCOPED_TRACE(std::string(m_type.name) + "::" + m_field->name);
            m_present = TQX_isPresent(m_type, *m_field, m_record);
            ASSERT_EQ(row->has != nullptr, m_field->presence != TQX_Presence::Always);
            if (row->has) {
                ASSERT_EQ((m_message.*row->has)(), m_present);
            }
            std::visit([this](const auto& getters) { check(getters); }, row->getters);
        }
        checkRawString();
    }

private:
    std::string fieldName() const
    {
        std::string name = std::string(m_type.name) + "::" + m_field->name;
        std::replace(name.begin(), name.end(), ' ', '_');
        return name;
    }

    std::string absentText() const
    {
        return "Requesting value for a non-present optional field " + fieldName() + ".";
    }

    std::string rangeText() const
    {
        return "Requesting value for an repeated field " + fieldName() +
               " with out of range index.";
    }

    template<typename Value>
    void expectElement(Value value, uint32_t index) const
    {
        EXPECT_EQ(std::memcmp(&value, TQX_element(*m_field, m_record, index), sizeof value), 0);
    }

    template<typename Value>
    void check(const ScalarGetter<Value>& getter)
    {
        ASSERT_EQ(m_field->type, memberTypeOf<Value>);
        const auto read = [&] { return (m_message.*getter.get)(); };
        if (m_present)
            expectElement(read(), 0);
        else
            EXPECT_EQ(thrownText(read), absentText());
    }

    template<typename Value>
    void check(const RepeatedGetters<Value>& getters)
    {
        ASSERT_EQ(m_field->type, memberTypeOf<Value>);
        const unsigned count = (m_message.*getters.count)();
        ASSERT_EQ(count, TQX_elementCount(m_type, *m_field, m_record));
        EXPECT_EQ((m_message.*getters.array)(), TQX_element(*m_field, m_record));
        const QVector<Value> vector = (m_message.*getters.vector)();
        ASSERT_EQ(static_cast<unsigned>(vector.size()), count);
        for (unsigned i = 0; i < count; ++i) {
            expectElement((m_message.*getters.at)(i), i);
            expectElement(vector[static_cast<int>(i)], i);
        }
        EXPECT_EQ(thrownText([&] { (m_message.*getters.at)(count); }), rangeText());
    }

    void check(const BlocksGetters& getters)
    {
        const unsigned count = (m_message.*getters.count)();
        ASSERT_EQ(count, TQX_elementCount(m_type, *m_field, m_record));
        ASSERT_EQ(static_cast<unsigned>(getters.vectorSize(&m_message)), count);
        for (unsigned i = 0; i < count; ++i)
            checkChild(getters.at(&m_message, i), i);
        EXPECT_EQ(thrownText([&] { getters.at(&m_message, count); }), rangeText());
    }

    void check(const EmbeddedGetter& getter)
    {
        if (m_present)
            checkChild(getter.get(&m_message), 0);
        else
            EXPECT_EQ(thrownText([&] { getter.get(&m_message); }), absentText());
    }

    void checkChild(const Message* child, unsigned index)
    {
        ASSERT_NE(child, nullptr);
        EXPECT_EQ(child->getParentMessage(), &m_message);
        ASSERT_EQ(RecordReader::recordOf(child), TQX_element(*m_field, m_record, index));
        EXPECT_TRUE(m_message.getSubMessages().contains(child));
        MessageCheck(*child).run();
    }

    /// The whole line is its columns put together.
    void checkRawString() const
    {
        QStringList columns;
        for (int i = 0; i < m_type.fieldCount; ++i) {
            QVector<bool> mask(i + 1, false);
            mask[i] = true;
            columns += m_message.getRawStringFor(mask);
        }
        EXPECT_EQ(m_message.getRawStringFor(QVector<bool>(m_type.fieldCount, true)),
                  columns.join(Message::fieldSeparator))
            << m_type.name;
    }

    const Message& m_message;
    const void* m_record;
    const TQX_TypeLayout& m_type;
    const TQX_FieldLayout* m_field = nullptr;
    bool m_present = true;
};

TEST(AllMessages, GiveWhatTheirRecordsHold)
{
    TQX_FormatInfo::getInstance();
    std::mt19937 generator(20240917);
    unsigned types = 0;
    for (const TQX_MessageType& row : TQX_messageTypes()) {
        const TQX_TypeLayout& type = *TQX_layout(static_cast<uint32_t>(row.recordType));
        ++types;
        for (unsigned round = 0; round < 8; ++round) {
            TQX_AnyRecord_u area;
            type.init(&area);
            fillRandomly(type, &area, generator);
            if (type.blockNumber != 0)
                reinterpret_cast<TQX_MainHeader_s*>(&area)->Revision = static_cast<uint8_t>(round);
            const std::unique_ptr<const Message> message(TQX_createMessage(&area));
            ASSERT_NE(message, nullptr) << type.name;
            EXPECT_EQ(message->getInfo(), row.info());
            MessageCheck(*message).run();
            if (testing::Test::HasFailure())
                return;
        }
    }
    EXPECT_EQ(types, accessorsByType().size());
}

} // namespace
