// Messages show nothing of what was in memory before their block was decoded, and nothing that
// is beyond the room of a record that was filled by hand.

#include "FieldRoles.h"
#include "RandomBlock.h"
#include "Records.h"
#include "TQX_MessageAccessors.h"

#include "FieldInfo.h"
#include "MessageInfo.h"

#include <cstring>
#include <random>

using namespace Kor::MessageApi;

namespace
{

/// All that can be had from a message: getters, vectors, metadata and the raw line.
class Reached
{
public:
    explicit Reached(Message& message) { add(message); }

    QStringList lines;

private:
    void add(Message& message)
    {
        const TQX_TypeLayout& type =
            *TQX_layout(TQX_AS_KORCG_HEADER(RecordReader::recordOf(&message))->korcg_type);
        const QVector<const FieldInfo*> infos = message.getInfo()->getFieldInfos();
        lines += message.getRawStringFor(QVector<bool>(type.fieldCount, true));
        for (const FieldAccessor& row : fieldAccessors(type.recordType)) {
            m_name = QLatin1String(type.fields[row.field].name);
            m_present = row.has == nullptr || (message.*row.has)();
            std::visit([&](const auto& getters) { addGetters(message, getters); }, row.getters);
            const FieldInfo* info = infos[row.field];
            const unsigned count = info->getNumberOfValues(&message);
            lines += m_name + ' ' + QString::number(count) + info->getValueString(&message);
            for (unsigned i = 0; i < count; ++i)
                lines += info->getValueString(&message, i, true);
        }
    }

    template<typename Value>
    void addValue(Value value)
    {
        QByteArray bytes(sizeof value, '\0');
        std::memcpy(bytes.data(), &value, sizeof value);
        lines += m_name + ' ' + QString::fromLatin1(bytes.toHex());
    }

    template<typename Value>
    void addGetters(Message& message, const ScalarGetter<Value>& getters)
    {
        if (m_present)
            addValue((message.*getters.get)());
    }

    // An array that is absent has elements nevertheless.
    template<typename Value>
    void addGetters(Message& message, const RepeatedGetters<Value>& getters)
    {
        const unsigned count = (message.*getters.count)();
        for (unsigned i = 0; i < count; ++i) {
            addValue((message.*getters.at)(i));
            addValue((message.*getters.constArray)()[i]);
        }
        for (const Value value : (message.*getters.vector)())
            addValue(value);
    }

    void addGetters(Message& message, const BlocksGetters& getters)
    {
        const unsigned count = (message.*getters.count)();
        const QString name = m_name;
        for (unsigned i = 0; i < count; ++i)
            add(*getters.at(&message, i));
        m_name = name;
    }

    void addGetters(Message& message, const EmbeddedGetters& getters)
    {
        const QString name = m_name;
        if (m_present)
            add(*getters.get(&message));
        m_name = name;
    }

    QString m_name;
    bool m_present = true;
};

/// What a message says of a block that was decoded into memory filled with a byte; nothing when
/// the block does not decode.
QStringList reachedOver(uint8_t content, const std::vector<uint8_t>& block)
{
    TQX_AnyRecord_u area;
    std::memset(&area, content, sizeof area);
    area.head = {};
    QStringList lines;
    if (TQX_decode(nullptr, block.data(), static_cast<uint16_t>(block.size()), &area) > 0) {
        lines = Reached(*std::unique_ptr<Message>(TQX_createMessage(&area))).lines;
    } else {
        TQX_release(&area);
    }
    return lines;
}

TEST(OldMemory, IsNotShownByMessages)
{
    TQX_FormatInfo::getInstance();
    std::mt19937_64 random(1);
    unsigned messages = 0;
    for (const TQX_TypeLayout* type : mainTypes()) {
        unsigned rounds = 2 * (type->highestRevision + 2U);
        for (int row = 0; row < type->fieldCount; ++row)
            rounds += type->fields[row].presence == TQX_Presence::Selected ? 4U : 0U;
        for (unsigned round = 0; type->hasMessage && round < rounds; ++round) {
            SCOPED_TRACE(std::string(type->name) + ", round " + std::to_string(round));
            BlockOptions options;
            options.revision = round / 2 % (type->highestRevision + 2U);
            options.largestCount = type->release != nullptr ? 5 : round % 2 == 0 ? 100 : 5000;
            const std::vector<uint8_t> block = randomBlock(*type, options, random);
            const QStringList one = reachedOver(0xa5, block);
            ASSERT_EQ(one, reachedOver(0x5a, block));
            messages += one.isEmpty() ? 0U : 1U;
        }
    }
    EXPECT_GT(messages, 500U);
}

// The payload of one format is not what the memory held as another one.
TEST(OldMemory, IsNotShownByVectorsOfOtherContent)
{
    TQX_FormatInfo::getInstance();
    TQX_AnyRecord_u area;
    auto& text = *reinterpret_cast<TQX_ASCIIIn_s*>(&area);
    TQX_init_ASCIIIn(&text);
    std::memset(text.ASCIIString, 'x', sizeof text.ASCIIString);
    area.head = {};

    std::vector<uint8_t> block(20 + 200, 'c');
    const uint8_t head[] = {'$', '@', 0, 0, 0x1f, 0x17, 220, 0, 0, 0,
                            0,   0,   0, 0, 2,    0,    200, 0, 0, 0};
    std::copy(std::begin(head), std::end(head), block.begin());
    ASSERT_GT(TQX_decode(nullptr, block.data(), static_cast<uint16_t>(block.size()), &area), 0);
    const TQX_DiffCorrIn_Message message(reinterpret_cast<TQX_DiffCorrIn_s*>(&area), false);
    EXPECT_EQ(message.getRTCM3MessageVector(), QVector<unsigned char>(200, 'c'));
    EXPECT_EQ(message.getCMRMessageVector(), QVector<unsigned char>(200, 0));
    EXPECT_EQ(message.getRTCMVMessageVector(), QVector<unsigned char>(200, 0));
    EXPECT_EQ(message.getRTCM2WordsVector(), QVector<unsigned int>(33, 0));
    EXPECT_EQ(message.getInformationVector(), QVector<unsigned int>(33, 0));
}

const FieldInfo* infoOf(const Message& message, const char* name)
{
    for (const FieldInfo* info : message.getInfo()->getFieldInfos()) {
        if (info->getName() == name)
            return info;
    }
    return nullptr;
}

TEST(FilledByHand, NumbersEndWithTheRoom)
{
    const auto record = made(TQX_init_DiffCorrIn);
    record->Data_Byte_Length = 60000;
    const TQX_DiffCorrIn_Message message(record.get(), false);
    EXPECT_EQ(message.getNumberOfRTCM2Words(), 33U);
    EXPECT_EQ(message.getNumberOfParity(), 33U);
    EXPECT_EQ(message.getNumberOfCMRMessage(), 261U);
    EXPECT_EQ(message.getNumberOfRTCM3Message(), 1029U);
    EXPECT_EQ(message.getCMRMessage(260), 0);
    EXPECT_EQ(message.getCMRMessageVector().size(), 261);
    const char* const alternatives[] = {"RTCM2Words", "CMRMessage", "RTCM3Message", "RTCMVMessage"};
    const unsigned room[] = {33, 261, 1029, 1029};
    for (uint8_t mode = 0; mode < 4; ++mode) {
        record->Mode = mode;
        const FieldInfo* info = infoOf(message, alternatives[mode]);
        ASSERT_NE(info, nullptr);
        EXPECT_EQ(info->getNumberOfValues(&message), room[mode]);
        EXPECT_EQ(info->getValueString(&message).count('0'), static_cast<int>(room[mode]));
    }
}

TEST(FilledByHand, CountedSubBlocksNeedNoArray)
{
    const auto record = measEpoch2(0);
    record->N1 = 3;
    const TQX_MeasEpoch2_Message message(record.get(), false);
    const FieldInfo* info = infoOf(message, "Type1");
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info->getNumberOfValues(&message), 3U);
    EXPECT_EQ(info->getValueString(&message), "submsg submsg submsg");
    EXPECT_EQ(info->getValueString(&message, 2, true), "submsg");
    EXPECT_EQ(info->getValueString(&message, 3, true), "");
    EXPECT_TRUE(message.getSubMessages().isEmpty());
    record->N1 = 0;
    EXPECT_EQ(info->getValueString(&message), "");
}

} // namespace
