#include "tqx/gnss/navigation/SystemData.h"

#include "tqx/gnss/navigation/Weeks.h"
#include "tqx/log/time/CalendarDate.h"
#include "tqx/log/time/LeapSeconds.h"

#include "TQX_codec.h"

#include <cmath>

namespace tqx
{

using namespace Kor::MessageApi;
using namespace navigation;

namespace
{

constexpr uint16_t galIon = 4030;
constexpr uint16_t galUtc = 4031;
constexpr uint16_t galGstGps = 4032;
constexpr uint16_t gloTime = 4036;
constexpr uint16_t bdsIon = 4120;
constexpr uint16_t bdsUtc = 4121;
constexpr uint16_t gpsIon = 5893;
constexpr uint16_t gpsUtc = 5894;

constexpr double noValue = -2e10;
constexpr double unknownTime = 4294967295.0;

template<typename Record>
const Record& as(const void* record)
{
    return *static_cast<const Record*>(record);
}

template<typename Record>
void fillKlobuchar(Ionosphere& data, const Record& r)
{
    data.values = {r.alpha_0, r.alpha_1, r.alpha_2, r.alpha_3,
                   r.beta_0,  r.beta_1,  r.beta_2,  r.beta_3};
}

TimeOffset offsetOf(const char* kind, double week, double second, double a0, double a1)
{
    TimeOffset offset;
    offset.kind = kind;
    offset.week = week;
    offset.second = second;
    offset.reference = millisOf(week, second);
    offset.a0 = a0;
    offset.a1 = a1;
    return offset;
}

TimeOffset offsetOf(const TQX_BDSUtc_s& record)
{
    const double week = beiDouWeek(record.WN_ot, record.WNc);
    // D1 and D2 do not contain the reference time: the start of the week is used.
    const double second = record.t_ot == unknownTime ? 0 : record.t_ot;
    TimeOffset offset = offsetOf("BDUT", week, second, record.A_0, record.A_1);
    offset.reference = millisOf(week + beiDouWeekZero, second);
    offset.a2 = record.A_2 == static_cast<float>(noValue) ? 0 : static_cast<double>(record.A_2);
    offset.transmitted = record.t_tm * 1e-3;
    return offset;
}

/// GPS week in which the content of a block was sent, from its time of week in milliseconds.
int weekOf(const TQX_MainHeader_s& header, uint32_t sent)
{
    constexpr int64_t half = 302400000;
    const int64_t apart = int64_t{sent} - int64_t{header.TOW};
    return header.WNc + (apart < -half ? 1 : apart > half ? -1 : 0);
}

/// GLONASS time against UTC and GPS time, both for the start of a day by UTC.
TimeOffset glonassOffset(const TQX_GLOTime_s& record, const char* kind, double a0)
{
    TimeOffset offset;
    offset.kind = kind;
    const int64_t days = daysOf({1996, 1, 1}) + (record.N_4 - 1) * int64_t{1461} + (record.N_A - 1);
    offset.reference = days > 0 ? static_cast<GnssMillis>(days) * 86400000 : 0;
    offset.a0 = a0;
    offset.transmitted =
        static_cast<double>(utcMillis(millisOf(record.WNc, record.TOW * 1e-3)) % millisPerWeek) *
        1e-3;
    return offset;
}

} // namespace

bool Ionosphere::wants(uint16_t blockNumber)
{
    return blockNumber == gpsIon || blockNumber == galIon || blockNumber == bdsIon;
}

std::optional<Ionosphere> Ionosphere::of(const DecodedBlock& decoded)
{
    const TQX_MainHeader_s& header = decoded.getHeader();
    const auto time = gnssMillis(header.TOW, header.WNc);
    if (!time)
        return std::nullopt;
    Ionosphere data;
    data.received = *time;
    data.reference = *time;
    switch (decoded.block.getNumber()) {
    case gpsIon: {
        const auto& record = as<TQX_GPSIon_s>(decoded.record);
        fillKlobuchar(data, record);
        data.reference = millisOf(weekOf(header, record.t_tm), record.t_tm * 1e-3);
        return data;
    }
    case bdsIon: {
        const auto& record = as<TQX_BDSIon_s>(decoded.record);
        data.system = 'C';
        fillKlobuchar(data, record);
        data.reference = millisOf(weekOf(header, record.t_tm), record.t_tm * 1e-3);
        return data;
    }
    case galIon: {
        const auto& record = as<TQX_GALIon_s>(decoded.record);
        data.system = 'E';
        data.values = {record.a_0, record.a_1, record.a_2};
        data.disturbance = unsigned{record.SF1} | unsigned{record.SF2} << 1U |
                           unsigned{record.SF3} << 2U | unsigned{record.SF4} << 3U |
                           unsigned{record.SF5} << 4U;
        return data;
    }
    default:
        return std::nullopt;
    }
}

bool TimeOffset::wants(uint16_t blockNumber)
{
    return blockNumber == gpsUtc || blockNumber == galUtc || blockNumber == galGstGps ||
           blockNumber == bdsUtc || blockNumber == gloTime;
}

std::array<std::optional<TimeOffset>, 2> TimeOffset::of(const DecodedBlock& decoded)
{
    std::array<std::optional<TimeOffset>, 2> offsets;
    const TQX_MainHeader_s& header = decoded.getHeader();
    const auto time = gnssMillis(header.TOW, header.WNc);
    if (!time)
        return offsets;
    const auto isGiven = [](double value) { return value != noValue; };
    switch (decoded.block.getNumber()) {
    case gpsUtc: {
        const auto& record = as<TQX_GPSUtc_s>(decoded.record);
        if (!isGiven(record.A_0))
            break;
        offsets[0] = offsetOf("GPUT", weekNear(record.WN_t, record.WNc), record.t_ot, record.A_0,
                              record.A_1);
        offsets[0]->transmitted = record.t_tm * 1e-3;
        break;
    }
    case galUtc: {
        const auto& record = as<TQX_GALUtc_s>(decoded.record);
        if (!isGiven(record.A_0))
            break;
        offsets[0] = offsetOf("GAUT", weekNear(record.WN_ot, record.WNc), record.t_ot, record.A_0,
                              record.A_1);
        offsets[0]->transmitted = record.t_tm * 1e-3;
        break;
    }
    case galGstGps: {
        const auto& record = as<TQX_GALGstGps_s>(decoded.record);
        if (!isGiven(record.A_0G) || record.Valid == 0)
            break;
        offsets[0] = offsetOf("GAGP", weekNear(record.WN_0G, record.WNc), record.t_0G, record.A_0G,
                              record.A_1G);
        offsets[0]->transmitted = record.TOW * 1e-3;
        break;
    }
    case bdsUtc:
        if (isGiven(as<TQX_BDSUtc_s>(decoded.record).A_0))
            offsets[0] = offsetOf(as<TQX_BDSUtc_s>(decoded.record));
        break;
    case gloTime: {
        const auto& record = as<TQX_GLOTime_s>(decoded.record);
        if (record.N_4 == 0 || record.N_A == 0)
            break;
        // GLONASS sends the value to add to its time.
        if (isGiven(record.tau_c))
            offsets[0] = glonassOffset(record, "GLUT", 0 - record.tau_c);
        if (isGiven(record.tau_GPS))
            offsets[1] = glonassOffset(record, "GLGP", 0 - static_cast<double>(record.tau_GPS));
        break;
    }
    default:
        break;
    }
    for (auto& offset : offsets) {
        if (offset)
            offset->received = *time;
    }
    return offsets;
}

} // namespace tqx
