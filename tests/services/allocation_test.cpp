// Replaces operator new, so that the decoder can be refused memory.

#include "Blocks.h"
#include "TQXDecoder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

// -1 lets all allocations succeed.
static int allocationsBeforeFailure = -1;

void* operator new(size_t size)
{
    void* memory = allocationsBeforeFailure >= 0 && allocationsBeforeFailure-- == 0
                       ? nullptr
                       : std::malloc(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, size_t) noexcept
{
    std::free(memory);
}

TEST(TQXDecoder, TellsWhenThereIsNoMemoryForAMessage)
{
    TQX_FormatInfo::getInstance();
    TQXDecoder decoder;
    int messages = 0;
    QObject::connect(&decoder, &MessageSource::newMessage, [&] { ++messages; });
    std::string event;
    QObject::connect(&decoder, &MessageSource::newEvent,
                     [&](const MessageApiEvent& reported) { event = described(reported); });
    const QByteArray block = measEpoch2(2);
    int attempts = 0;
    while (messages == 0) {
        event.clear();
        allocationsBeforeFailure = attempts;
        EXPECT_GT(decoder.decodeMessage(bytesOf(block), sizeOf(block)), 0);
        allocationsBeforeFailure = -1;
        EXPECT_EQ(event, messages == 0 ? "5 TQX: Inconsistent decoder state" : "") << attempts;
        ++attempts;
    }
    EXPECT_GE(attempts, 3) << "neither record nor message were refused";
}
