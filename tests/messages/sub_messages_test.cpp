#include "Records.h"
#include "Reveal.h"

#include "TQX_SubMessages.h"

#include "MemLeakTracer.h"

#include <vector>

using namespace Kor::MessageApi;

struct DisposeSubMessages {
    friend constexpr auto revealed(DisposeSubMessages);
};

template struct Reveal<&TQX_MeasEpoch2_Message::disposeSubMessages, DisposeSubMessages>;

namespace
{

using State = TQX_AGCState_Message;

/// Messages of a class made so far, and those still there.
qint64 madeOf(const char* name)
{
    return MemLeakTracer::getTotalAllocations(QLatin1String(name));
}

qint64 aliveOf(const char* name)
{
    return MemLeakTracer::getObjectCount(QLatin1String(name));
}

constexpr const char* stateName = "TQX_AGCState_Message";
constexpr const char* channelName = "TQX_MeasEpochChannelType1_Message";

TEST(SubMessages, AnEmptyListCountsAsBuilt)
{
    auto record = measEpoch2(0);
    TQX_MeasEpoch2_Message message(record.get(), false);
    EXPECT_TRUE(message.getSubMessages().isEmpty());
    TQX_append_MeasEpoch2_Type1(record.get());
    EXPECT_TRUE(message.getSubMessages().isEmpty());
    EXPECT_EQ(message.getNumberOfType1(), 1U) << "the count is the record's";
}

TEST(SubMessages, ANullArrayIsEmptyWhateverTheCount)
{
    auto record = measEpoch2(0);
    record->N1 = 4;
    TQX_MeasEpoch2_Message message(record.get(), false);
    EXPECT_TRUE(message.getType1Vector().isEmpty());
    EXPECT_NE(thrownText([&] { message.getType1(0); }), "");
    record->N1 = 0;
}

TEST(SubMessages, AreMadeOnceAndAgainAfterDisposal)
{
    auto record = measEpoch2(3);
    TQX_MeasEpoch2_Message message(record.get(), false);
    const qint64 alive = aliveOf(channelName);
    const qint64 before = madeOf(channelName);
    const QVector<Message*> children = message.getSubMessages();
    EXPECT_EQ(message.getSubMessages(), children);
    EXPECT_EQ(madeOf(channelName), before + 3);
    (message.*revealed(DisposeSubMessages()))();
    EXPECT_EQ(aliveOf(channelName), alive);
    EXPECT_EQ(message.getType1Vector().size(), 3);
    EXPECT_EQ(madeOf(channelName), before + 6);
}

/// Which elements of a pool the old children read, and how many of the new ones are reused when
/// the array is elements `first` to `first + count - 1` of it.
struct ReuseCase {
    std::vector<int> old;
    int first;
    int count;
    int reused;
};

TEST(SubMessages, AreKeptByTheirRecord)
{
    const ReuseCase cases[] = {
        {{}, 0, 3, 0},           {{0, 1, 2, 3}, 0, 4, 4}, {{0, 1, 2, 3}, 0, 2, 2},
        {{0, 1}, 0, 5, 2},       {{0, 1, 2}, 0, 0, 0},    {{3, 2, 1, 0}, 0, 4, 4},
        {{0, 1, 2, 3}, 2, 4, 2}, {{0, 1, 2}, 8, 3, 0},    {{5, 0, 9, 2, 1}, 0, 6, 4},
    };
    auto status = made(TQX_init_ReceiverStatus2);
    for (const ReuseCase& row : cases) {
        SCOPED_TRACE(&row - cases);
        std::vector<TQX_AGCState_s> pool(16);
        for (TQX_AGCState_s& record : pool)
            TQX_init_AGCState(&record);
        QVector<Message*> owned;
        for (const int place : row.old)
            owned.append(new State(&pool[static_cast<size_t>(place)], nullptr, false));
        const QVector<Message*> old = owned;
        const qint64 alive = aliveOf(stateName);
        const qint64 before = madeOf(stateName);
        QVector<State*> typed;
        int lookups = 0;
        {
            const auto recordOf = [&](const Message* child) {
                ++lookups;
                return RecordReader::recordOf(child);
            };
            TQX_SubMessageBuilder builder(owned, status.get(), nullptr, recordOf);
            builder.build(&pool[static_cast<size_t>(row.first)], static_cast<unsigned>(row.count),
                          typed);
        }
        ASSERT_EQ(owned.size(), row.count);
        ASSERT_EQ(typed.size(), row.count);
        int reused = 0;
        for (int i = 0; i < row.count; ++i) {
            const auto& element = pool[static_cast<size_t>(row.first + i)];
            EXPECT_EQ(RecordReader::recordOf(owned[i]), &element);
            EXPECT_EQ(element.korcg_father, status.get());
            EXPECT_EQ(typed[i], owned[i]);
            reused += old.contains(owned[i]) ? 1 : 0;
        }
        EXPECT_EQ(reused, row.reused);
        EXPECT_EQ(madeOf(stateName) - before, row.count - row.reused);
        EXPECT_EQ(aliveOf(stateName), alive - static_cast<qint64>(row.old.size()) + row.count);
        EXPECT_LE(lookups, 2 * static_cast<int>(row.old.size()) + 1) << "linear";
        TQX_disposeChildren(owned);
    }
}

TEST(SubMessages, OfSeveralArraysFollowEachOtherInOneList)
{
    auto epoch = measEpoch2(2);
    auto status = batteryStatus(0);
    QVector<Message*> owned;
    QVector<TQX_MeasEpochChannelType1_Message*> channels;
    QVector<TQX_Battery_Message*> batteries;
    {
        TQX_SubMessageBuilder builder(owned, nullptr, nullptr, &RecordReader::recordOf);
        builder.build(epoch->Type1, epoch->N1, channels);
        builder.build(status->Battery, status->N, batteries);
    }
    EXPECT_EQ(owned, (QVector<Message*>{channels[0], channels[1], batteries[0]}));

    // Another type lies where the battery lay: its child is of another class.
    auto gain = made(TQX_init_AGCState);
    QVector<State*> states;
    {
        const auto recordOf = [&](const Message*) -> const void* { return gain.get(); };
        TQX_SubMessageBuilder builder(owned, nullptr, nullptr, recordOf);
        builder.build(gain.get(), 1, states);
    }
    EXPECT_NE(dynamic_cast<State*>(owned.value(0)), nullptr);
    TQX_disposeChildren(owned);
}

TEST(SubMessages, AnEmbeddedOneFollowsItsRecord)
{
    auto first = made(TQX_init_AGCState);
    auto second = made(TQX_init_AGCState);
    State* child = nullptr;
    const auto ensure = [&](TQX_AGCState_s* element) {
        TQX_ensureChild(child, element, second.get(), nullptr, &RecordReader::recordOf);
        return madeOf(stateName);
    };
    const qint64 before = madeOf(stateName);
    EXPECT_EQ(ensure(first.get()), before + 1);
    EXPECT_EQ(first->korcg_father, second.get());
    EXPECT_EQ(ensure(first.get()), before + 1) << "kept";
    EXPECT_EQ(ensure(second.get()), before + 2) << "replaced";
    EXPECT_EQ(RecordReader::recordOf(child), second.get());
    ensure(nullptr);
    EXPECT_EQ(child, nullptr);
}

} // namespace
