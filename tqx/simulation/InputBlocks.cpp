#include "tqx/simulation/Blocks.h"

#include "tqx/simulation/Rtcm3.h"
#include "tqx/simulation/TextMember.h"

#include <fmt/format.h>

#include <cmath>
#include <cstring>

namespace tqx::simulation
{

using namespace Kor::MessageApi;

namespace
{

constexpr uint8_t serialPort2 = 2;
constexpr uint8_t ntripClient1 = 129;

} // namespace

void addSensor(BlockLog& log, const Epoch& epoch, const Track& track, Random& random)
{
    constexpr uint8_t builtIn = 1;
    constexpr uint8_t acceleration = 0;
    constexpr uint8_t angularRate = 1;
    constexpr uint8_t synchronized = 4;
    constexpr double gravity = 9.80665;
    constexpr double earthRate = 0.004178; // degrees per second
    const double turnRate = track.getTurnRate();
    const auto value = [&random](double mean, double noise) {
        return rounded(mean + random.normal(noise), 1e-6);
    };
    TQX_ExtSensorMeas1_s record;
    TQX_init_ExtSensorMeas1(&record);
    for (const uint8_t type : {acceleration, angularRate}) {
        TQX_ExtSensorMeasSet_s& set = *TQX_append_ExtSensorMeas1_ExtSensorMeasSet(&record);
        set.SensorModel = builtIn;
        set.Type = type;
        set.ObsInfo = synchronized;
        if (type == acceleration) {
            set.Acceleration.AccX = value(0.021, 0.004);
            set.Acceleration.AccY = value(track.getSpeed() * turnRate - 0.013, 0.004);
            set.Acceleration.AccZ = value(gravity, 0.005);
        } else {
            set.AngularRate.RateX = value(0, 0.02);
            set.AngularRate.RateY = value(earthRate * 0.68, 0.02);
            set.AngularRate.RateZ = value(turnRate * 180 / pi + earthRate * 0.73, 0.02);
        }
    }
    log.add(epoch, record, TQX_encode_ExtSensorMeas1);
}

void addText(BlockLog& log, const Epoch& epoch, Random& random)
{
    const double phase = 2 * pi * epoch.elapsed / 86400;
    const std::string text =
        fmt::format("$WIXDR,P,{:.4f},B,BARO,C,{:.1f},C,TEMP,H,{:.1f},P,RH\r\n",
                    rounded(0.9687 + 0.0004 * std::sin(phase) + random.normal(2e-5), 1e-4),
                    rounded(14 + 5 * std::sin(phase) + random.normal(0.1), 0.1),
                    rounded(62 - 9 * std::sin(phase) + random.normal(0.3), 0.1));
    TQX_ASCIIIn_s record;
    TQX_init_ASCIIIn(&record);
    record.CD = serialPort2;
    setText(record.SensorModel, "WX-20");
    setText(record.SensorType, "weather station");
    record.StringLn = static_cast<uint16_t>(text.size());
    std::memcpy(record.ASCIIString, text.data(), text.size());
    log.add(epoch, record, TQX_encode_ASCIIIn);
}

void addCorrections(BlockLog& log, const Epoch& epoch, const Geodetic& start)
{
    constexpr uint8_t rtcm3 = 2;
    const ReferenceStation station = {
        1042,       toEarthFixed(moved(start, {3210.5, 4450.25, 117.8})),
        1.55,       "GEODETIC CHOKE RING",
        "CR-20417", "REFERENCE 12",
        "3.1.4",    "R12-00077"};
    for (const std::vector<uint8_t>& message :
         {rtcm3Position(station), rtcm3PositionAndHeight(station), rtcm3Equipment(station)}) {
        TQX_DiffCorrIn_s record;
        TQX_init_DiffCorrIn(&record);
        record.Mode = rtcm3;
        record.Source = ntripClient1;
        record.Data_Byte_Length = static_cast<uint16_t>(message.size());
        std::memcpy(record.RTCM3Message, message.data(), message.size());
        log.add(epoch, record, TQX_encode_DiffCorrIn);
    }
}

} // namespace tqx::simulation
