#include "Records.h"

#include "TQX_FormatInfo.h"
#include "TQX_SubMessages.h"

#include "MemLeakTracer.h"

#include <vector>

using namespace Kor::MessageApi;

namespace
{

using State = TQX_AGCState_Message;
constexpr const char* stateName = "TQX_AGCState_Message";

/// Which elements of a pool the old children read, and how many of the new ones are reused when
/// the array is elements `first` to `first + count - 1` of it.
struct ReuseCase {
    const char* name;
    std::vector<int> old;
    int first;
    int count;
    int reused;
};

class SubMessageBuilder : public testing::TestWithParam<ReuseCase>
{
protected:
    void SetUp() override { TQX_FormatInfo::getInstance(); }
};

TEST_P(SubMessageBuilder, KeepsChildrenByRecord)
{
    const ReuseCase& row = GetParam();
    std::vector<TQX_AGCState_s> pool(16);
    for (TQX_AGCState_s& record : pool)
        TQX_init_AGCState(&record);

    QVector<Message*> owned;
    for (const int place : row.old)
        owned.append(new State(&pool[static_cast<size_t>(place)], nullptr, false));
    const QVector<Message*> old = owned;
    const qint64 alive = MemLeakTracer::getObjectCount(QLatin1String(stateName));
    const qint64 total = MemLeakTracer::getTotalAllocations(QLatin1String(stateName));

    auto status = made(TQX_init_ReceiverStatus2);
    TQX_ReceiverStatus2_Message parent(status.get(), false);
    QVector<State*> typed;
    int lookups = 0;
    {
        const auto recordOf = [&](const Message* child) {
            ++lookups;
            return RecordReader::recordOf(child);
        };
        TQX_SubMessageBuilder builder(owned, status.get(), &parent, recordOf);
        builder.build(&pool[static_cast<size_t>(row.first)], static_cast<unsigned>(row.count),
                      typed);
    }
    int reused = 0;
    ASSERT_EQ(owned.size(), row.count);
    ASSERT_EQ(typed.size(), row.count);
    for (int i = 0; i < row.count; ++i) {
        const auto& element = pool[static_cast<size_t>(row.first + i)];
        EXPECT_EQ(RecordReader::recordOf(owned[i]), &element);
        EXPECT_EQ(element.korcg_father, status.get());
        EXPECT_EQ(typed[i], owned[i]);
        reused += old.contains(owned[i]) ? 1 : 0;
    }
    const auto created = MemLeakTracer::getTotalAllocations(QLatin1String(stateName)) - total;
    EXPECT_EQ(created, row.count - row.reused);
    EXPECT_EQ(MemLeakTracer::getObjectCount(QLatin1String(stateName)),
              alive - static_cast<qint64>(row.old.size()) + row.count);
    EXPECT_EQ(reused, row.reused);
    EXPECT_LE(lookups, 2 * static_cast<int>(row.old.size()) + 1) << "linear";
    TQX_disposeChildren(owned);
    EXPECT_TRUE(owned.isEmpty());
}

const ReuseCase reuseCases[] = {
    {"None", {}, 0, 3, 0},
    {"All", {0, 1, 2, 3}, 0, 4, 4},
    {"Fewer", {0, 1, 2, 3}, 0, 2, 2},
    {"More", {0, 1}, 0, 5, 2},
    {"AllGone", {0, 1, 2}, 0, 0, 0},
    {"Reversed", {3, 2, 1, 0}, 0, 4, 4},
    {"FrontGone", {0, 1, 2, 3}, 2, 4, 2},
    {"Moved", {0, 1, 2}, 8, 3, 0},
    {"Shuffled", {5, 0, 9, 2, 1}, 0, 6, 4},
};

INSTANTIATE_TEST_SUITE_P(All, SubMessageBuilder, testing::ValuesIn(reuseCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(SubMessageReuse, SeveralArraysFollowEachOtherInOneList)
{
    TQX_FormatInfo::getInstance();
    auto epoch = measEpoch2(2);
    auto status = batteryStatus(0);
    QVector<Message*> owned;
    QVector<TQX_MeasEpochChannelType1_Message*> channels;
    QVector<TQX_Battery_Message*> batteries;
    QVector<Message*> first;
    for (int round = 0; round < 2; ++round) {
        {
            TQX_SubMessageBuilder builder(owned, nullptr, nullptr, &RecordReader::recordOf);
            builder.build(epoch->Type1, epoch->N1, channels);
            builder.build(status->Battery, status->N, batteries);
        }
        ASSERT_EQ(owned.size(), 3);
        EXPECT_EQ(owned, (QVector<Message*>{channels[0], channels[1], batteries[0]}));
        EXPECT_TRUE(first.isEmpty() || owned == first) << "reused";
        first = owned;
    }
    TQX_disposeChildren(owned);
}

TEST(SubMessageReuse, NeedsTheClassOfTheElement)
{
    TQX_FormatInfo::getInstance();
    auto gain = made(TQX_init_AGCState);
    auto battery = made(TQX_init_Battery);
    QVector<Message*> owned{new TQX_Battery_Message(battery.get(), nullptr, false)};
    QVector<State*> typed;
    {
        // An old record of another type lay where the element lies now.
        const auto recordOf = [&](const Message*) -> const void* { return gain.get(); };
        TQX_SubMessageBuilder builder(owned, nullptr, nullptr, recordOf);
        builder.build(gain.get(), 1, typed);
    }
    EXPECT_NE(dynamic_cast<State*>(owned.value(0)), nullptr);
    TQX_disposeChildren(owned);
}

TEST(SubMessageReuse, EmbeddedChildFollowsItsRecord)
{
    TQX_FormatInfo::getInstance();
    auto first = made(TQX_init_AGCState);
    auto second = made(TQX_init_AGCState);
    State* child = nullptr;
    const auto ensure = [&](TQX_AGCState_s* element) {
        TQX_ensureChild(child, element, second.get(), nullptr, &RecordReader::recordOf);
        return MemLeakTracer::getTotalAllocations(QLatin1String(stateName));
    };
    const qint64 before = MemLeakTracer::getTotalAllocations(QLatin1String(stateName));
    EXPECT_EQ(ensure(first.get()), before + 1);
    EXPECT_EQ(first->korcg_father, second.get());
    EXPECT_EQ(ensure(first.get()), before + 1) << "kept";
    EXPECT_EQ(ensure(second.get()), before + 2) << "replaced";
    EXPECT_EQ(RecordReader::recordOf(child), second.get());
    ensure(nullptr);
    EXPECT_EQ(child, nullptr);
}

} // namespace
