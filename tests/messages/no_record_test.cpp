#include "Records.h"
#include "TQX_MessageAccessors.h"

#include <memory>
#include <random>
#include <string>
#include <variant>

using namespace Kor::MessageApi;

namespace
{

/// Calls one of the functions of a field.
class AnyRead
{
public:
    AnyRead(Message& message, std::mt19937& generator)
        : m_message(message), m_which(static_cast<unsigned>(generator()))
    {
    }

    void operator()(const FieldAccessor& row) const
    {
        if (row.has && m_which % 2 == 0)
            (m_message.*row.has)();
        else
            std::visit(*this, row.getters);
    }

    template<typename Value>
    void operator()(const ScalarGetter<Value>& getter) const
    {
        (m_message.*getter.get)();
    }

    template<typename Value>
    void operator()(const RepeatedGetters<Value>& getters) const
    {
        if (m_which % 3 == 0)
            (m_message.*getters.at)(0);
        else if (m_which % 3 == 1)
            (m_message.*getters.count)();
        else
            (m_message.*getters.vector)();
    }

    void operator()(const BlocksGetters& getters) const
    {
        if (m_which % 6 == 0)
            getters.at(&m_message, 0);
        else if (m_which % 6 == 1)
            getters.constAt(&m_message, 0);
        else if (m_which % 6 == 2)
            (m_message.*getters.count)();
        else if (m_which % 6 == 3)
            getters.vector(&m_message);
        else if (m_which % 6 == 4)
            getters.constVector(&m_message);
        else
            m_message.getSubMessages();
    }

    void operator()(const EmbeddedGetters& getters) const { getters.get(&m_message); }

private:
    Message& m_message;
    unsigned m_which;
};

TEST(MessagesWithoutRecordDeathTest, EndTheProcessWhenRead)
{
    TQX_FormatInfo::getInstance();
    std::mt19937 generator(1);
    for (const MessageMaker& maker : messageMakers()) {
        const auto type = static_cast<unsigned>(maker.recordType);
        const std::unique_ptr<Message> message(maker.make());
        EXPECT_EQ(RecordReader::recordOf(message.get()), nullptr);
        EXPECT_EQ(message->getRawStringFor(QVector<bool>(3, false)), "");
        const Rows<FieldAccessor> rows = fieldAccessors(maker.recordType);
        const FieldAccessor& row = rows.rows[generator() % rows.count];
        const AnyRead read(*message, generator);
        EXPECT_DEATH(read(row), std::string("TQX_") + TQX_layout(type)->name +
                                    "_Message::assertRepresentation\\(\\) failed when trying to "
                                    "access data of an uninitialized message\\.\n")
            << TQX_layout(type)->fields[row.field].name;
    }
}

} // namespace
