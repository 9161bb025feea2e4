#pragma once

#include "TQX_Format.h"

#include <cstdint>

namespace tqx::simulation
{

/// The satellite systems that the receiver tracks.
enum class System : uint8_t { Gps, Glonass, Galileo, BeiDou };

constexpr unsigned systemCount = 4;

/// Place of a system in tables with one entry each.
constexpr unsigned indexOf(System system)
{
    return static_cast<unsigned>(system);
}

/// The identifier of a satellite in blocks. The numbers of BeiDou above 40 have a range of their
/// own.
constexpr uint8_t svidOf(System system, unsigned number)
{
    constexpr unsigned before[systemCount] = {0, 37, 70, 140};
    const unsigned base = system == System::BeiDou && number > 40 ? 182U : before[indexOf(system)];
    return static_cast<uint8_t>(base + number);
}

/// Frequency number of a GLONASS satellite as blocks hold it, 0 for all others.
constexpr uint8_t frequencySlot(System system, int channel)
{
    return static_cast<uint8_t>(system == System::Glonass ? channel + 8 : 0);
}

constexpr uint32_t secondsPerDay = 86400;
constexpr uint32_t secondsPerWeek = Kor::MessageApi::TQX_secondsPerWeek;

constexpr unsigned galileoWeekZero = 1024; ///< GPS week in which Galileo system time begins
constexpr unsigned beiDouWeekZero = 1356;  ///< GPS week in which BeiDou time begins
constexpr uint32_t beiDouDelay = 14;       ///< seconds by which BeiDou time is behind GPS time
constexpr int8_t leapSeconds = 18;         ///< seconds by which UTC is behind GPS time since 2017
constexpr uint32_t moscowAhead = 10800;    ///< seconds by which GLONASS time is ahead of UTC

} // namespace tqx::simulation
