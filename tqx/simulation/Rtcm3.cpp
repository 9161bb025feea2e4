#include "tqx/simulation/Rtcm3.h"

#include "tqx/simulation/Random.h"

#include <cstddef>

namespace tqx::simulation
{

namespace
{

/// Writes numbers bit by bit, the highest bit first.
class BitWriter
{
public:
    void put(uint64_t value, unsigned width)
    {
        for (unsigned i = width; i-- != 0; ++m_used) {
            if (m_used % 8 == 0)
                bytes.push_back(0);
            bytes.back() =
                static_cast<uint8_t>(bytes.back() | (value >> i & 1U) << (7 - m_used % 8));
        }
    }

    std::vector<uint8_t> bytes;

private:
    size_t m_used = 0;
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

constexpr double metreStep = 0.0001;

/// A message between header and checksum.
std::vector<uint8_t> framed(const std::vector<uint8_t>& message)
{
    BitWriter writer;
    writer.put(0xd3, 8); // preamble
    writer.put(0, 6);
    writer.put(message.size(), 10);
    for (const uint8_t byte : message)
        writer.put(byte, 8);
    writer.put(checksum(writer.bytes), 24);
    return writer.bytes;
}

/// Message 1005, which 1006 begins with.
BitWriter positionMessage(uint16_t number, const ReferenceStation& station)
{
    BitWriter writer;
    writer.put(number, 12);
    writer.put(station.number, 12);
    writer.put(0, 6);     // year of the reference frame, not given
    writer.put(0b111, 3); // GPS, GLONASS and Galileo
    writer.put(0, 1);     // a physical station
    const auto putCoordinate = [&writer](double value) {
        writer.put(static_cast<uint64_t>(steps(value, metreStep)), 38);
    };
    putCoordinate(station.position.x);
    writer.put(0, 2); // receiver oscillator not given, reserved
    putCoordinate(station.position.y);
    writer.put(0, 2); // quarter cycles not given
    putCoordinate(station.position.z);
    return writer;
}

void putText(BitWriter& writer, const std::string& text)
{
    writer.put(text.size(), 8);
    for (const char character : text)
        writer.put(static_cast<uint8_t>(character), 8);
}

} // namespace

std::vector<uint8_t> rtcm3Position(const ReferenceStation& station)
{
    return framed(positionMessage(1005, station).bytes);
}

std::vector<uint8_t> rtcm3PositionAndHeight(const ReferenceStation& station)
{
    BitWriter writer = positionMessage(1006, station);
    writer.put(static_cast<uint64_t>(steps(station.antennaHeight, metreStep)), 16);
    return framed(writer.bytes);
}

std::vector<uint8_t> rtcm3Equipment(const ReferenceStation& station)
{
    BitWriter writer;
    writer.put(1033, 12);
    writer.put(station.number, 12);
    putText(writer, station.antenna);
    writer.put(0, 8); // standard setup of the antenna
    putText(writer, station.antennaSerial);
    putText(writer, station.receiver);
    putText(writer, station.firmware);
    putText(writer, station.receiverSerial);
    return framed(writer.bytes);
}

} // namespace tqx::simulation
