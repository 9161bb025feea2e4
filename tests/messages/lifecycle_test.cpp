#include "Records.h"
#include "Reveal.h"

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

/// Counts the deletions of a record from here on.
void watch(const void* record)
{
    watched = record;
    deletions = 0;
}

TEST(MessageLifecycle, DeletesTheRecordOnceAndOnlyIfOwned)
{
    for (const bool owns : {true, false}) {
        auto record = measEpoch2(2);
        watch(record.get());
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

TEST(MessageLifecycle, DisposesAndTakesRecords)
{
    auto first = measEpoch2(2);
    auto second = measEpoch2(3);
    watch(first.get());
    TQX_MeasEpoch2_Message message(first.release(), true);
    EXPECT_TRUE((message.*revealed(Has()))());
    EXPECT_EQ(message.getType1Vector().size(), 2);

    (message.*revealed(Dispose()))();
    EXPECT_EQ(deletions, 1);
    EXPECT_FALSE((message.*revealed(Has()))());
    EXPECT_EQ(RecordReader::recordOf(&message), nullptr);
    (message.*revealed(Dispose()))();
    EXPECT_EQ(deletions, 1);

    watch(second.get());
    (message.*revealed(Set()))(second.release());
    EXPECT_EQ(message.getType1Vector().size(), 3);
    (message.*revealed(Dispose()))();
    EXPECT_EQ(deletions, 1);
}

TEST(MessageLifecycle, CopiesAreViewsOfTheSameRecordAndChildren)
{
    const QString name = QStringLiteral("TQX_MeasEpoch2_Message");
    const qint64 before = MemLeakTracer::getObjectCount(name);
    auto record = measEpoch2(2);
    {
        TQX_MeasEpoch2_Message message(record.get(), false);
        const QVector<Message*> children = message.getSubMessages();
        TQX_MeasEpoch2_Message copy(message);
        EXPECT_EQ(RecordReader::recordOf(&copy), record.get());
        EXPECT_EQ(copy.getSubMessages(), children);
        EXPECT_EQ(MemLeakTracer::getObjectCount(name), before + 1);
        // Assignment drops the children without deleting them, so only one of the two does.
        TQX_MeasEpoch2_Message empty(nullptr, false);
        copy = empty;
        EXPECT_EQ(RecordReader::recordOf(&copy), nullptr);
        EXPECT_EQ(message.getSubMessages(), children);
    }
    EXPECT_EQ(MemLeakTracer::getObjectCount(name), before - 1) << "copies report their end alone";
}

TEST(MessageLifecycle, FactoryMakesMessagesOfKnownTypes)
{
    const auto record = made(TQX_init_AGCState);
    const std::unique_ptr<Message> state(TQX_createMessage(record.get()));
    ASSERT_NE(dynamic_cast<TQX_AGCState_Message*>(state.get()), nullptr);
    EXPECT_EQ(state->getParentMessage(), nullptr);
    const KorcgHeader_s unknown{0, 0, nullptr};
    EXPECT_EQ(TQX_createMessage(&unknown), nullptr);
}

TEST(MessageLifecycleDeathTest, AssertsItsRepresentation)
{
    TQX_FormatInfo::getInstance();
    const TQX_MeasEpoch2_Message message(nullptr, true);
    EXPECT_DEATH((message.*revealed(Assert()))(),
                 "TQX_MeasEpoch2_Message::assertRepresentation\\(\\) failed");
}

} // namespace
