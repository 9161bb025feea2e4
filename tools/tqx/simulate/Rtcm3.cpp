#include "Rtcm3.h"

#include "Random.h"

#include <cstddef>

namespace tool
{

namespace
{

/// Puts numbers bit by bit, the highest bit first.
class BitWriter
{
public:
    void put(uint64_t value, unsigned width)
    {
        for (unsigned i = width; i-- != 0; ++used) {
            if (used % 8 == 0)
                bytes.push_back(0);
            bytes.back() = static_cast<uint8_t>(bytes.back() | (value >> i & 1U) << (7 - used % 8));
        }
    }

    std::vector<uint8_t> bytes;

private:
    size_t used = 0;
};

/// CRC-24Q.
uint32_t checksum(const std::vector<uint8_t>& bytes)
{
    uint32_t crc = 0;
    for (const uint8_t byte : bytes) {
        crc ^= static_cast<uint32_t>(byte) << 16U;
        for (int bit = 0; bit < 8; ++bit) {
            crc <<= 1U;
            if ((crc & 0x1000000U) != 0)
                crc ^= 0x1864cfbU;
        }
    }
    return crc;
}

} // namespace

std::vector<uint8_t> rtcm3StationMessage(uint16_t station, const Vector& position)
{
    constexpr unsigned messageBytes = 19;
    constexpr double positionStep = 0.0001;
    BitWriter writer;
    writer.put(0xd3, 8); // preamble
    writer.put(0, 6);
    writer.put(messageBytes, 10);
    writer.put(1005, 12);
    writer.put(station, 12);
    writer.put(0, 6);     // year of the reference frame, not told
    writer.put(0b100, 3); // GPS, neither GLONASS nor Galileo
    writer.put(0, 1);     // a physical station
    const auto putCoordinate = [&writer](double value) {
        writer.put(static_cast<uint64_t>(steps(value, positionStep)), 38);
    };
    putCoordinate(position.x);
    writer.put(0, 2); // receiver oscillator not told, reserved
    putCoordinate(position.y);
    writer.put(0, 2); // quarter cycles not told
    putCoordinate(position.z);
    writer.put(checksum(writer.bytes), 24);
    return writer.bytes;
}

} // namespace tool
