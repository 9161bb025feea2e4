#include "tqx/gnss/rinex/SetUp.h"

#include "tqx/gnss/orbit/Geodesy.h"
#include "tqx/gnss/rinex/HeaderText.h"

#include "TQX_codec.h"

#include <tuple>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

constexpr double noValue = -2e10;

double lengthOr0(float value)
{
    return value == static_cast<float>(noValue) ? 0 : static_cast<double>(value);
}

auto tied(const SetUp& s)
{
    return std::tie(s.marker, s.markerNumber, s.markerType, s.observer, s.agency, s.receiverNumber,
                    s.receiverType, s.receiverVersion, s.antennaNumber, s.antennaType, s.height,
                    s.east, s.north, s.site, s.country, s.monument, s.receiver);
}

} // namespace

SetUp SetUp::of(const DecodedBlock& decoded)
{
    const auto& record = *static_cast<const TQX_ReceiverSetup1_s*>(decoded.record);
    using rinex::plain;
    SetUp setUp;
    setUp.marker = plain(record.MarkerName);
    setUp.markerNumber = plain(record.MarkerNumber);
    setUp.markerType = plain(record.MarkerType);
    setUp.observer = plain(record.Observer);
    setUp.agency = plain(record.Agency);
    setUp.receiverNumber = plain(record.ReceiverNumber);
    setUp.receiverType = plain(record.ReceiverType);
    setUp.receiverVersion = plain(record.ReceiverVersion);
    setUp.antennaNumber = plain(record.AntennaNumber);
    setUp.antennaType = plain(record.AntennaType);
    setUp.height = lengthOr0(record.AntennaDeltaH);
    setUp.east = lengthOr0(record.AntennaDeltaE);
    setUp.north = lengthOr0(record.AntennaDeltaN);
    setUp.monument = record.MonumentNr;
    setUp.receiver = record.ReceiverNr;
    if (record.Revision >= 1) {
        setUp.site = plain(record.SiteCode);
        setUp.country = plain(record.CountryCode);
    }
    if (record.Revision >= 2 && record.Latitude != noValue && record.Longitude != noValue) {
        constexpr double degree = pi / 180;
        const double height = record.Height == -100 ? 0 : record.Height;
        const Vector place =
            toEarthFixed({record.Latitude * degree, record.Longitude * degree, height});
        setUp.hasPosition = true;
        setUp.x = place.x;
        setUp.y = place.y;
        setUp.z = place.z;
    }
    return setUp;
}

bool operator==(const SetUp& a, const SetUp& b)
{
    return tied(a) == tied(b);
}

} // namespace tqx
