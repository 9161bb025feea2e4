#include "tqx/simulation/Blocks.h"

#include "tqx/log/time/GnssTime.h"
#include "tqx/simulation/Rtcm3.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace tqx::simulation
{

namespace
{

void addText(BlockLog& log, const std::string& text)
{
    log.addNeighbour(reinterpret_cast<const uint8_t*>(text.data()), text.size());
}

/// "4704.20000,N": degrees, then minutes of two digits, to about a centimetre.
std::string angleText(double radians, int degreeDigits, const char* signs)
{
    constexpr uint64_t minute = 100000; // steps
    const auto steps =
        static_cast<uint64_t>(std::llround(std::fabs(radians) * 180 / pi * 60 * minute));
    return fmt::format("{:0{}}{:02}.{:05},{}", steps / (60 * minute), degreeDigits,
                       steps / minute % 60, steps % minute, signs[radians < 0 ? 1 : 0]);
}

/// "115942.00", the time of day in UTC.
std::string timeOfDayText(const Epoch& epoch)
{
    constexpr uint64_t millisPerDay = 86400000;
    const uint64_t millis =
        (epoch.week * millisPerWeek + epoch.towMillis - leapSeconds * 1000) % millisPerDay;
    const uint64_t seconds = millis / 1000;
    return fmt::format("{:02}{:02}{:02}.{:02}", seconds / 3600, seconds / 60 % 60, seconds % 60,
                       millis / 10 % 100);
}

} // namespace

void addPositionSentence(BlockLog& log, const Epoch& epoch, const Receiver& receiver)
{
    constexpr unsigned mostSatellites = 12;
    const Solution& solution = receiver.getSolution();
    const Covariance& cofactors = solution.cofactors;
    const std::string content =
        fmt::format("GPGGA,{},{},{},1,{:02},{:.1f},{:.3f},M,{:.3f},M,,", timeOfDayText(epoch),
                    angleText(solution.position.latitude, 2, "NS"),
                    angleText(solution.position.longitude, 3, "EW"),
                    std::min(solution.usedSatellites(), mostSatellites),
                    std::sqrt(cofactors[0][0] + cofactors[1][1]),
                    solution.position.height - Receiver::undulation, Receiver::undulation);
    unsigned sum = 0;
    for (const char character : content)
        sum ^= static_cast<unsigned char>(character);
    addText(log, fmt::format("${}*{:02X}\r\n", content, sum));
}

void addBaseFrames(BlockLog& log, const Geodetic& marker)
{
    const ReferenceStation station = {
        7,          toEarthFixed(marker), 0,       "GEODETIC CHOKE RING",
        "CR-20431", "RECEIVER 1",         "1.0.0", "R1-00012"};
    for (const std::vector<uint8_t>& frame :
         {rtcm3Position(station), rtcm3PositionAndHeight(station), rtcm3Equipment(station)})
        log.addNeighbour(frame.data(), frame.size());
}

void addReply(BlockLog& log, const Epoch& epoch, const Receiver& receiver)
{
    addText(log, "Status of the receiver\r\n");
    addText(log, fmt::format("  up: {} s\r\n", std::llround(epoch.elapsed)));
    addText(log, fmt::format("  tracked: {} satellites\r\n", receiver.getSights().size()));
    addText(log, "\r\n");
    addText(log, "COM1>");
}

} // namespace tqx::simulation
