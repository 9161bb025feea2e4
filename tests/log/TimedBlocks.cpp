#include "TimedBlocks.h"

Bytes timedBlock(uint16_t id, uint32_t tow, uint16_t week, size_t extra)
{
    Bytes bytes = falseHeader(static_cast<uint16_t>(14 + extra));
    bytes[4] = static_cast<uint8_t>(id);
    bytes[5] = static_cast<uint8_t>(id >> 8);
    for (int shift = 0; shift < 32; shift += 8)
        bytes.push_back(static_cast<uint8_t>(tow >> shift));
    bytes.push_back(static_cast<uint8_t>(week));
    bytes.push_back(static_cast<uint8_t>(week >> 8));
    for (size_t i = 0; i < extra; ++i)
        bytes.push_back(static_cast<uint8_t>(i));
    const uint16_t sum = slowChecksum(bytes.data() + 4, bytes.size() - 4);
    bytes[2] = static_cast<uint8_t>(sum);
    bytes[3] = static_cast<uint8_t>(sum >> 8);
    return bytes;
}

Bytes hostileLog(std::mt19937& random)
{
    constexpr uint16_t ids[] = {4007, 4007 | 0x2000, 4027, 4013, 1, 8191};
    const auto below = [&](uint32_t limit) { return static_cast<uint32_t>(random() % limit); };
    Bytes log = randomStream(random);
    for (uint32_t parts = below(6); parts != 0; --parts) {
        const uint32_t tow = below(8) == 0 ? unsetTow : below(secondsPerWeek) * 1000;
        log = log + timedBlock(ids[below(6)], tow, static_cast<uint16_t>(below(3)), below(9));
    }
    return random() % 2 == 0 ? log : log + randomStream(random);
}
