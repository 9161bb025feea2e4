#include "Records.h"
#include "Reveal.h"

#include "TQX_FormatInfo.h"

#include "MemLeakTracer.h"

#include <cstdlib>
#include <new>

using namespace Kor::MessageApi;

// clang-format off
struct Has { friend constexpr auto revealed(Has); };
struct Set { friend constexpr auto revealed(Set); };
struct Dispose { friend constexpr auto revealed(Dispose); };
struct Assert { friend constexpr auto revealed(Assert); };
// clang-format on

template struct Reveal<&TQX_MeasEpoch2_Message::hasRepresentation, Has>;
template struct Reveal<&TQX_MeasEpoch2_Message::setRepresentation, Set>;
template struct Reveal<&TQX_MeasEpoch2_Message::disposeRepresentation, Dispose>;
template struct Reveal<&TQX_MeasEpoch2_Message::assertRepresentation, Assert>;

namespace
{

const void* watched = nullptr;
int deletions = 0;

void release(void* memory)
{
    if (memory && memory == watched)
        ++deletions;
    std::free(memory);
}

} // namespace

void* operator new(std::size_t size)
{
    if (void* memory = std::malloc(size != 0 ? size : 1))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    release(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    release(memory);
}

namespace
{

class MessageLifecycle : public testing::Test
{
protected:
    void SetUp() override
    {
        TQX_FormatInfo::getInstance();
        deletions = 0;
    }
    void TearDown() override { watched = nullptr; }
};

using MessageLifecycleDeathTest = MessageLifecycle;

TEST_F(MessageLifecycle, DeletesTheRecordOnceAndOnlyIfOwned)
{
    for (const bool owns : {true, false}) {
        auto record = measEpoch2(2);
        watched = record.get();
        deletions = 0;
        {
            TQX_MeasEpoch2_Message message(record.get(), owns);
            message.getSubMessages();
            if (owns)
                record.release();
            EXPECT_EQ(deletions, 0);
        }
        EXPECT_EQ(deletions, owns ? 1 : 0);
    }
}

TEST_F(MessageLifecycle, DisposesAndTakesRecords)
{
    auto first = measEpoch2(2);
    auto second = measEpoch2(3);
    watched = first.get();
    TQX_MeasEpoch2_Message message(first.release(), true);
    EXPECT_TRUE((message.*revealed(Has()))());
    EXPECT_EQ(message.getType1Vector().size(), 2);

    (message.*revealed(Dispose()))();
    EXPECT_EQ(deletions, 1);
    EXPECT_FALSE((message.*revealed(Has()))());
    EXPECT_EQ(RecordReader::recordOf(&message), nullptr);
    (message.*revealed(Dispose()))();
    EXPECT_EQ(deletions, 1);

    watched = second.get();
    (message.*revealed(Set()))(second.release());
    EXPECT_EQ(message.getType1Vector().size(), 3);
    (message.*revealed(Dispose()))();
    EXPECT_EQ(deletions, 2);
}

TEST_F(MessageLifecycle, CopiesAreViewsOfTheSameRecordAndChildren)
{
    auto record = measEpoch2(2);
    TQX_MeasEpoch2_Message message(record.get(), false);
    const QVector<Message*> children = message.getSubMessages();
    TQX_MeasEpoch2_Message copy(message);
    EXPECT_EQ(RecordReader::recordOf(&copy), record.get());
    EXPECT_EQ(copy.getSubMessages(), children);
    // Assignment drops the children without deleting them, so only one of the two does.
    copy = TQX_MeasEpoch2_Message(nullptr, false);
    EXPECT_EQ(RecordReader::recordOf(&copy), nullptr);
    EXPECT_EQ(message.getSubMessages(), children);
}

TEST_F(MessageLifecycle, CopiesReportOnlyTheirEnd)
{
    const QString name = QStringLiteral("TQX_MeasEpoch2_Message");
    const qint64 before = MemLeakTracer::getObjectCount(name);
    auto record = measEpoch2(2);
    {
        TQX_MeasEpoch2_Message message(record.get(), false);
        TQX_MeasEpoch2_Message copy(message);
        EXPECT_EQ(MemLeakTracer::getObjectCount(name), before + 1);
    }
    EXPECT_EQ(MemLeakTracer::getObjectCount(name), before - 1);
}

TEST_F(MessageLifecycle, FactoryTakesOverACopyOfTheRecord)
{
    auto record = measEpoch2(2);
    const std::unique_ptr<Message> message(TQX_createMessage(record.get()));
    record->Type1 = nullptr; // the copy has it now
    record->N1 = 0;
    ASSERT_NE(message, nullptr);
    const auto* epoch = dynamic_cast<const TQX_MeasEpoch2_Message*>(message.get());
    ASSERT_NE(epoch, nullptr);
    EXPECT_EQ(epoch->getNumberOfType1(), 2U);
    EXPECT_EQ(epoch->getType1(1)->getRxChannel(), 2);

    const auto gain = made(TQX_init_AGCState);
    const std::unique_ptr<Message> sub(TQX_createMessage(gain.get()));
    ASSERT_NE(dynamic_cast<TQX_AGCState_Message*>(sub.get()), nullptr);
    EXPECT_EQ(sub->getParentMessage(), nullptr);

    const KorcgHeader_s unknown{0, 0, nullptr};
    EXPECT_EQ(TQX_createMessage(&unknown), nullptr);
}

TEST_F(MessageLifecycleDeathTest, AssertsItsRepresentation)
{
    const TQX_MeasEpoch2_Message message(nullptr, true);
    EXPECT_DEATH((message.*revealed(Assert()))(),
                 "TQX_MeasEpoch2_Message::assertRepresentation\\(\\) failed");
}

} // namespace
