// A decoder per thread over one registry.

#include "Host.h"
#include "RandomLog.h"
#include "TQXUtils.h"
#include "TQX_FormatInfo.h"

#include "FieldInfo.h"
#include "MessageInfo.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <thread>

namespace
{

constexpr uint64_t startTime = 1209945600000;

struct Outcome {
    uint64_t messages = 0;
    uint64_t damages = 0;
    uint64_t lateness = 0;   ///< milliseconds, of all messages
    uint64_t values = 0;     ///< fields that have one
    uint64_t characters = 0; ///< of their texts, and of raw lines
};

bool operator==(const Outcome& a, const Outcome& b)
{
    return a.messages == b.messages && a.damages == b.damages && a.lateness == b.lateness &&
           a.values == b.values && a.characters == b.characters;
}

void read(const Message* message, Outcome& outcome)
{
    const auto& fields = message->getInfo()->getFieldInfos();
    outcome.characters +=
        static_cast<uint64_t>(message->getRawStringFor(QVector<bool>(fields.size(), true)).size());
    for (const FieldInfo* field : fields) {
        outcome.values += field->hasValue(message) ? 1 : 0;
        outcome.characters += static_cast<uint64_t>(field->getValueString(message).size());
    }
    for (const Message* child : message->getSubMessages()) {
        read(child, outcome);
    }
}

Outcome walk(const QByteArray& stream)
{
    constexpr uint64_t readInFull = 8; // one message in so many
    Outcome outcome;
    Host host;
    host.onMessage = [&](const Message* message) {
        outcome.lateness += TQXUtils::getGNSSMillis(message) - startTime;
        if (host.messages % readInFull == 0) {
            read(message, outcome);
        }
    };
    host.append(stream, 10000);
    host.end();
    outcome.messages = host.messages;
    outcome.damages = host.damages;
    EXPECT_TRUE(host.accountsForEveryByte());
    EXPECT_EQ(host.events, 0U);
    return outcome;
}

TEST(Threads, GetAWholeRegistryFromTheFirstCall)
{
    std::array<int, 4> sizes = {};
    std::vector<std::thread> threads;
    for (int& size : sizes) {
        threads.emplace_back(
            [&size] { size = TQX_FormatInfo::getInstance()->getMessageInfos().size(); });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_THAT(sizes, testing::Each(221));
}

TEST(Threads, DecodeTheSameStreamSideBySide)
{
    TQX_FormatInfo::getInstance();
    RandomLog log(5 << 20);
    log.beginAt(startTime);
    std::array<Outcome, 4> outcomes;
    std::vector<std::thread> threads;
    for (Outcome& outcome : outcomes) {
        threads.emplace_back([&] { outcome = walk(log.bytes()); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const Outcome alone = walk(log.bytes());
    EXPECT_EQ(alone.messages, log.blockCount() / 243 * 221);
    EXPECT_GT(alone.damages, 0U);
    EXPECT_GT(alone.values, alone.messages);
    for (const Outcome& outcome : outcomes) {
        EXPECT_TRUE(outcome == alone);
    }
}

} // namespace
