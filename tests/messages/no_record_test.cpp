#include "Records.h"
#include "TQX_MessageAccessors.h"

#include "FieldInfo.h"
#include "MessageInfo.h"

#include <functional>
#include <random>
#include <vector>

using namespace Kor::MessageApi;

namespace
{

/// All ways to read a field that need a record.
struct ReadsOf {
    using Reads = std::vector<std::function<void()>>;

    Reads operator()(const FieldAccessor& row) const
    {
        Reads reads = std::visit(*this, row.getters);
        reads.emplace_back([=] { info->getValue(message, 0); });
        reads.emplace_back([=] { info->getValueUnchecked(message, 0); });
        reads.emplace_back([=] { info->getValueString(message, 0, false); });
        if (row.has)
            reads.emplace_back([=] { (message->*row.has)(); });
        return reads;
    }
    template<typename Value>
    Reads operator()(const ScalarGetter<Value>& getter) const
    {
        return {[=] { (message->*getter.get)(); }};
    }
    template<typename Value>
    Reads operator()(const RepeatedGetters<Value>& getters) const
    {
        return {[=] { (message->*getters.at)(0); }, [=] { (message->*getters.count)(); },
                [=] { (message->*getters.vector)(); }};
    }
    Reads operator()(const BlocksGetters& getters) const
    {
        return {[=] { getters.at(message, 0); }, [=] { (message->*getters.count)(); },
                [=] { getters.vector(message); }, [=] { getters.constVector(message); },
                [=] { message->getSubMessages(); }};
    }
    Reads operator()(const EmbeddedGetters& getters) const
    {
        return {[=] { getters.get(message); }, [=] { message->getSubMessages(); }};
    }

    Message* message;
    const FieldInfo* info;
};

TEST(MessagesWithoutRecordDeathTest, EndTheProcessWhenRead)
{
    TQX_FormatInfo::getInstance();
    std::mt19937 generator(1);
    const auto below = [&](size_t limit) { return generator() % limit; };
    for (const MessageMaker& maker : messageMakers()) {
        const std::unique_ptr<Message> message(maker.make());
        EXPECT_EQ(RecordReader::recordOf(message.get()), nullptr);
        EXPECT_EQ(message->getRawStringFor(QVector<bool>(3, false)), "");
        const Rows<FieldAccessor> rows = fieldAccessors(maker.recordType);
        const size_t field = below(rows.count);
        const ReadsOf readsOf{message.get(),
                              message->getInfo()->getFieldInfos()[static_cast<int>(field)]};
        const auto reads = readsOf(rows.rows[field]);
        const auto& read = reads[below(reads.size())];
        EXPECT_DEATH(read(),
                     "TQX_" + message->getInfo()->getName().toStdString() +
                         "_Message::assertRepresentation\\(\\) failed when trying to access data "
                         "of an uninitialized message\\.\n");
    }
}

} // namespace
