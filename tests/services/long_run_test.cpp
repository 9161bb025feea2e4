// A long log through synchroniser and decoder takes no more memory than a short one.

#include "Host.h"
#include "RandomLog.h"
#include "TQXUtils.h"
#include "TQX_FormatInfo.h"

#include "MessageInfo.h"

#include <gtest/gtest.h>

#include <array>
#include <sys/resource.h>

namespace
{

constexpr uint64_t startTime = 1209945600000;
constexpr uint64_t megabyte = 1 << 20;

double peakOfMemory()
{
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss);
}

// A receiver that keeps some messages until a number of newer ones have come, and then looks
// at them once more.
class Keeper
{
public:
    ~Keeper()
    {
        for (const Message* message : m_kept) {
            release(message);
        }
    }

    void take(const Message* message)
    {
        if (m_count++ % 16 != 0) {
            return;
        }
        message->addReference();
        const Message*& place = m_kept[m_count / 16 % m_kept.size()];
        release(place);
        place = message;
    }

    uint64_t characters = 0;

private:
    void release(const Message* message)
    {
        if (message == nullptr) {
            return;
        }
        if (m_count % 256 == 1) {
            const int fields = message->getInfo()->getFieldInfos().size();
            for (const Message* child : message->getSubMessages()) {
                characters += static_cast<uint64_t>(child->getParentMessage() == message ? 1 : 0);
            }
            characters +=
                static_cast<uint64_t>(message->getRawStringFor(QVector<bool>(fields, true)).size());
        }
        message->removeReference();
    }

    uint64_t m_count = 0;
    std::array<const Message*, 500> m_kept{};
};

TEST(LongRun, TakesConstantMemory)
{
    TQX_FormatInfo::getInstance();
    RandomLog log(3 * megabyte);
    Keeper keeper;
    Host host;
    const uint64_t millisPerRound = log.timeOf(0, log.blockCount());
    uint64_t wrongTimes = 0;
    host.onMessage = [&](const Message* message) {
        const uint64_t block = host.blocks - 1;
        const uint64_t start = startTime + block / log.blockCount() * millisPerRound;
        const uint64_t time = log.timeOf(start, block % log.blockCount());
        wrongTimes += TQXUtils::getGNSSMillis(message) != time ? 1 : 0;
        keeper.take(message);
    };
    uint64_t rounds = 0;
    const auto runUntil = [&](uint64_t megabytes) {
        for (; host.appended < megabytes * megabyte; ++rounds) {
            log.beginAt(startTime + rounds * millisPerRound);
            host.append(log.bytes(), 1 << 16);
        }
        return peakOfMemory();
    };
    const double ofShortRun = runUntil(15);
    const double ofLongRun = runUntil(300);
    host.end();

    EXPECT_LT(ofLongRun, 1.1 * ofShortRun);
    EXPECT_TRUE(host.accountsForEveryByte());
    EXPECT_EQ(host.blocks, rounds * log.blockCount());
    EXPECT_EQ(host.messages, host.blocks / 243 * 221);
    EXPECT_EQ(host.events, 0U);
    EXPECT_GT(host.damages, 0U);
    EXPECT_EQ(wrongTimes, 0U);
    EXPECT_GT(keeper.characters, 0U);
    RecordProperty("PeakRatio", std::to_string(ofLongRun / ofShortRun));
    RecordProperty("PeakKilobytes", std::to_string(ofLongRun));
}

} // namespace
