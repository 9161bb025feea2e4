#include "Records.h"
#include "Reveal.h"

#include "TQX_FormatInfo.h"

#include "MemLeakTracer.h"

using namespace Kor::MessageApi;

struct DisposeSubMessages {
    friend constexpr auto revealed(DisposeSubMessages);
};

template struct Reveal<&TQX_MeasEpoch2_Message::disposeSubMessages, DisposeSubMessages>;

namespace
{

class SubMessages : public testing::Test
{
protected:
    void SetUp() override { TQX_FormatInfo::getInstance(); }
};

TEST_F(SubMessages, AreBuiltOnceInRecordOrder)
{
    auto record = measEpoch2(3);
    TQX_MeasEpoch2_Message message(record.get(), false);
    const TQX_MeasEpoch2_Message& constant = message;
    const QVector<Message*> children = message.getSubMessages();
    ASSERT_EQ(children.size(), 3);
    for (int i = 0; i < 3; ++i) {
        const auto index = static_cast<unsigned>(i);
        EXPECT_EQ(message.getType1(index), children[i]);
        EXPECT_EQ(constant.getType1(index), children[i]);
        EXPECT_EQ(message.getType1Vector()[i], children[i]);
        EXPECT_EQ(constant.getType1Vector()[i], children[i]);
        EXPECT_EQ(constant.getSubMessages()[i], children[i]);
        EXPECT_EQ(children[i]->getParentMessage(), &message);
        EXPECT_EQ(RecordReader::recordOf(children[i]), record->Type1 + i);
        EXPECT_EQ(message.getType1(index)->getRxChannel(), i + 1);
    }
    EXPECT_EQ(message.getSubMessages(), children);
}

TEST_F(SubMessages, AnEmptyListCountsAsBuilt)
{
    auto record = measEpoch2(0);
    TQX_MeasEpoch2_Message message(record.get(), false);
    EXPECT_TRUE(message.getSubMessages().isEmpty());
    TQX_append_MeasEpoch2_Type1(record.get());
    EXPECT_TRUE(message.getSubMessages().isEmpty());
    EXPECT_EQ(message.getNumberOfType1(), 1U) << "the count is the record's";
}

TEST_F(SubMessages, ANullArrayIsEmptyWhateverTheCount)
{
    auto record = measEpoch2(0);
    record->N1 = 4;
    TQX_MeasEpoch2_Message message(record.get(), false);
    EXPECT_TRUE(message.getType1Vector().isEmpty());
    EXPECT_NE(thrownText([&] { message.getType1(0); }), "");
    record->N1 = 0;
}

TEST_F(SubMessages, AreNewAfterDisposal)
{
    auto record = measEpoch2(3);
    TQX_MeasEpoch2_Message message(record.get(), false);
    const QString name = QStringLiteral("TQX_MeasEpochChannelType1_Message");
    message.getSubMessages();
    const qint64 alive = MemLeakTracer::getObjectCount(name);
    const qint64 made = MemLeakTracer::getTotalAllocations(name);
    (message.*revealed(DisposeSubMessages()))();
    EXPECT_EQ(MemLeakTracer::getObjectCount(name), alive - 3);
    EXPECT_EQ(message.getType1Vector().size(), 3);
    EXPECT_EQ(MemLeakTracer::getTotalAllocations(name), made + 3);
}

TEST_F(SubMessages, LinkTheirRecordsToTheRecordThatTheyAreIn)
{
    auto original = batteryStatus(1);
    std::unique_ptr<Message> message(TQX_createMessage(original.get()));
    const void* copy = RecordReader::recordOf(message.get());
    original->Battery = nullptr;
    original->N = 0;
    original->Revision = 0;
    auto* battery = dynamic_cast<TQX_Battery_Message*>(message->getSubMessages().value(0));
    ASSERT_NE(battery, nullptr);
    EXPECT_EQ(TQX_AS_KORCG_HEADER(RecordReader::recordOf(battery))->korcg_father, copy);
    EXPECT_EQ(battery->getVoltage(), 12000) << "by the revision of the copy";
}

TEST_F(SubMessages, NestedOnesBelongToTheirOwnParent)
{
    auto record = measEpoch2(1);
    TQX_append_MeasEpochChannelType1_Type2(record->Type1)->LockTime = 9;
    TQX_MeasEpoch2_Message message(record.get(), false);
    TQX_MeasEpochChannelType1_Message* channel = message.getType1(0);
    ASSERT_EQ(channel->getNumberOfType2(), 1U);
    EXPECT_EQ(channel->getType2(0)->getLockTime(), 9);
    EXPECT_EQ(channel->getType2(0)->getParentMessage(), channel);
}

TEST_F(SubMessages, EmbeddedOneIsThatOfTheSelector)
{
    auto record = made(TQX_init_ExtSensorMeas1);
    auto* set = TQX_append_ExtSensorMeas1_ExtSensorMeasSet(record.get());
    set->Type = 3;
    set->Info.SerialNumber = 4711;
    TQX_ExtSensorMeas1_Message message(record.get(), false);
    TQX_ExtSensorMeasSet_Message* sensor = message.getExtSensorMeasSet(0);
    const TQX_ExtSensorMeasSet_Message* constant = sensor;
    TQX_ExtSensorMeasInfo_Message* info = sensor->getInfo();
    EXPECT_EQ(info->getSerialNumber(), 4711U);
    EXPECT_EQ(info->getParentMessage(), sensor);
    EXPECT_EQ(RecordReader::recordOf(info), &record->ExtSensorMeasSet->Info);
    EXPECT_EQ(record->ExtSensorMeasSet->Info.korcg_father, record->ExtSensorMeasSet);
    EXPECT_EQ(constant->getInfo(), info);
    EXPECT_EQ(sensor->getSubMessages(), QVector<Message*>{info});
    EXPECT_EQ(constant->getSubMessages(), QVector<const Message*>{info});

    record->ExtSensorMeasSet->Type = 99;
    TQX_ExtSensorMeasSet_Message other(record->ExtSensorMeasSet, nullptr, false);
    EXPECT_TRUE(other.getSubMessages().isEmpty());
}

} // namespace
