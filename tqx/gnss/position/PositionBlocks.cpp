#include "tqx/gnss/position/PositionBlocks.h"

#include "tqx/gnss/orbit/Geodesy.h"
#include "tqx/gnss/position/FieldNames.h"
#include "tqx/log/record/TypeNames.h"

#include "TQX_codec.h"

#include <algorithm>
#include <string>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

constexpr double degree = pi / 180;

/// Floating-point values that are not available are stored as this number.
double known(double value)
{
    return value <= -2e10 || !std::isfinite(value) ? notKnown : value;
}

/// A scaled integer, all ones for what is not available.
double known(uint16_t value, double scale)
{
    return value == 65535 ? notKnown : value * scale;
}

Fix fixOfMode(unsigned mode)
{
    static constexpr Fix fixes[] = {Fix::None,         Fix::Standalone, Fix::Differential,
                                    Fix::Differential, Fix::RtkFixed,   Fix::RtkFloat,
                                    Fix::Estimated,    Fix::Manual,     Fix::Ppp,
                                    Fix::Ppp,          Fix::RtkFixed,   Fix::RtkFloat};
    return mode < std::size(fixes) ? fixes[mode] : Fix::Standalone;
}

/// Of the inertial filter. What the GNSS positions are that it uses, only some blocks say.
Fix fixOfInertialMode(unsigned mode, unsigned gnssMode)
{
    constexpr unsigned withGnss = 3;
    if (mode == 0)
        return Fix::None;
    const Fix used = fixOfMode(gnssMode);
    return mode > withGnss ? Fix::Estimated : used == Fix::None ? Fix::Standalone : used;
}

/// Variances and covariances of earth-fixed coordinates.
struct Variances {
    double xx, yy, zz, xy, xz, yz;

    double along(const Vector& d) const
    {
        return d.x * d.x * xx + d.y * d.y * yy + d.z * d.z * zz +
               2 * (d.x * d.y * xy + d.x * d.z * xz + d.y * d.z * yz);
    }
};

Geodetic placeOf(const Position& position)
{
    return {position.latitude * degree, position.longitude * degree, position.height};
}

/// True if there are coordinates.
bool setPlace(Position& position, double latitude, double longitude, double height)
{
    position.latitude = known(latitude) / degree;
    position.longitude = known(longitude) / degree;
    position.height = known(height);
    return std::isfinite(position.latitude) && std::isfinite(position.longitude);
}

bool setEarthFixed(Position& position, double x, double y, double z)
{
    const Vector point = {known(x), known(y), known(z)};
    if (!std::isfinite(length(point)) || length(point) < 1000) // zeros are no place
        return false;
    const Geodetic place = toGeodetic(point);
    return setPlace(position, place.latitude, place.longitude, place.height);
}

void setVelocity(Position& position, double north, double east, double up)
{
    position.north = known(north);
    position.east = known(east);
    position.up = known(up);
}

void setEarthFixedVelocity(Position& position, double x, double y, double z)
{
    const Vector local = LocalFrame(placeOf(position)).toLocal({known(x), known(y), known(z)});
    setVelocity(position, local.y, local.x, local.z);
}

void setDeviations(Position& position, double north, double east, double up)
{
    position.level = AccuracyLevel::Sigma;
    position.horizontalAccuracy = std::hypot(north, east);
    position.verticalAccuracy = up;
}

void setVariances(Position& position, const Variances& variances)
{
    const LocalFrame frame(placeOf(position));
    setDeviations(position, std::sqrt(variances.along(frame.getNorth())),
                  std::sqrt(variances.along(frame.getEast())),
                  std::sqrt(variances.along(frame.getUp())));
}

void setBounds(Position& position, double horizontal, double vertical, double spatial = notKnown)
{
    position.horizontalAccuracy = horizontal;
    position.verticalAccuracy = vertical;
    position.spatialAccuracy = spatial;
    if (std::isfinite(horizontal) || std::isfinite(vertical) || std::isfinite(spatial))
        position.level = AccuracyLevel::Percent95;
}

template<typename Record>
void setAttitude(Position& position, const Record& attitude)
{
    position.heading = known(attitude.Heading);
    position.pitch = known(attitude.Pitch);
    position.roll = known(attitude.Roll);
}

template<typename Record>
void setCorrections(Position& position, const Record& record)
{
    position.correctionAge = known(record.MeanCorrAge, 0.01);
    position.reference = record.ReferenceID == 65535 ? -1 : record.ReferenceID;
}

/// False, as of all functions below, when there is no solution.
template<typename Record>
bool readMode(const Record& record, unsigned mode, const char* field, Position& position)
{
    position.mode = valueName(record.korcg_type, field, mode);
    position.datum = valueName(record.korcg_type, "Datum", record.Datum);
    position.fix = record.Error == 0 ? fixOfMode(mode) : Fix::None;
    return position.fix != Fix::None;
}

/// What the newer and older GNSS blocks have in common.
template<typename Record>
bool readGnss(const Record& record, Position& position)
{
    position.undulation = known(record.Undulation);
    position.satellites = record.NrSV == 255 ? -1 : record.NrSV;
    return readMode(record, record.PVTMode, "PVTMode", position);
}

template<typename Record>
bool readGnssGeodetic(const Record& record, Position& position)
{
    setVelocity(position, record.Vn, record.Ve, record.Vu);
    return readGnss(record, position) &&
           setPlace(position, record.Latitude, record.Longitude, record.Height);
}

template<typename Record>
bool readGnssCartesian(const Record& record, Position& position)
{
    if (!readGnss(record, position) || !setEarthFixed(position, record.X, record.Y, record.Z))
        return false;
    setEarthFixedVelocity(position, record.Vx, record.Vy, record.Vz);
    setCorrections(position, record);
    return true;
}

bool read(const TQX_PVTGeodetic1_s& record, Position& position)
{
    setCorrections(position, record);
    return readGnssGeodetic(record, position);
}

bool read(const TQX_PVTGeodetic2_s& record, Position& position)
{
    setCorrections(position, record);
    if (record.Revision >= 2)
        setBounds(position, known(record.HAccuracy, 0.01), known(record.VAccuracy, 0.01));
    return readGnssGeodetic(record, position);
}

bool read(const TQX_PVTGeodeticAuth1_s& record, Position& position)
{
    if (record.Revision >= 1)
        setBounds(position, known(record.HAccuracy, 0.01), known(record.VAccuracy, 0.01));
    return readGnssGeodetic(record, position);
}

bool read(const TQX_PVTCartesian1_s& record, Position& position)
{
    return readGnssCartesian(record, position);
}

bool read(const TQX_PVTCartesian2_s& record, Position& position)
{
    if (record.Revision >= 2)
        setBounds(position, notKnown, notKnown, known(record.Accuracy, 0.01));
    return readGnssCartesian(record, position);
}

bool read(const TQX_PosCart_s& record, Position& position)
{
    if (!readMode(record, record.Mode, "Mode", position) ||
        !setEarthFixed(position, record.X, record.Y, record.Z))
        return false;
    setCorrections(position, record);
    if (record.Revision >= 1)
        position.satellites = record.NrSV;
    else
        position.datum = {};
    setVariances(position, {record.Cov_XX, record.Cov_YY, record.Cov_ZZ, record.Cov_XY,
                            record.Cov_XZ, record.Cov_YZ});
    return true;
}

/// Heights of grids are not above the ellipsoid.
bool read(const TQX_PosLocal1_s& record, Position& position)
{
    if (!readMode(record, record.Mode, "Mode", position) ||
        !setPlace(position, record.Latitude, record.Longitude, record.Height))
        return false;
    position.datum = "local";
    if (record.HeightReference != 0)
        position.height = notKnown;
    return true;
}

template<typename Record>
bool readInertial(const Record& record, unsigned gnssMode, Position& position)
{
    position.mode = valueName(record.korcg_type, "Mode", record.Mode);
    position.datum = valueName(record.korcg_type, "Datum", record.Datum);
    position.fix = record.Error == 0 ? fixOfInertialMode(record.Mode, gnssMode) : Fix::None;
    return position.fix != Fix::None;
}

bool read(const TQX_IntPVGeod1_s& record, Position& position)
{
    position.satellites = record.NrSV == 255 ? -1 : record.NrSV;
    position.undulation = known(record.Undulation);
    if (record.Revision >= 1)
        setBounds(position, known(record.HAccuracy, 0.001), known(record.VAccuracy, 0.001));
    setVelocity(position, record.Vn, record.Ve, record.Vu);
    return readInertial(record, record.GNSSMode, position) &&
           setPlace(position, record.Latitude, record.Longitude, record.Height);
}

bool read(const TQX_IntPVCart1_s& record, Position& position)
{
    position.satellites = record.NrSV == 255 ? -1 : record.NrSV;
    if (record.Revision >= 1)
        setBounds(position, notKnown, notKnown, known(record.PosAccuracy, 0.001));
    if (!readInertial(record, record.GNSSMode, position) ||
        !setEarthFixed(position, record.X, record.Y, record.Z))
        return false;
    setEarthFixedVelocity(position, record.Vx, record.Vy, record.Vz);
    return true;
}

bool read(const TQX_IntPVAAGeod1_s& record, Position& position)
{
    setVelocity(position, record.Vn, record.Ve, record.Vu);
    setAttitude(position, record);
    return readInertial(record, 0, position) &&
           setPlace(position, record.Latitude, record.Longitude, record.Height);
}

bool read(const TQX_INSNavGeod1_s& record, Position& position)
{
    position.undulation = known(record.Undulation);
    if (record.Position_StdDev)
        setDeviations(position, record.PosStdDev.LatStdDev, record.PosStdDev.LonStdDev,
                      record.PosStdDev.AltStdDev);
    if (record.Attitude)
        setAttitude(position, record.Att);
    if (record.Velocity)
        setVelocity(position, record.Vel.Vn, record.Vel.Ve, record.Vel.Vu);
    return readInertial(record, 0, position) &&
           setPlace(position, record.Latitude, record.Longitude, record.Height);
}

bool read(const TQX_INSNavCart1_s& record, Position& position)
{
    if (!readInertial(record, 0, position) ||
        !setEarthFixed(position, record.X, record.Y, record.Z))
        return false;
    if (record.Position_StdDev) {
        const double x = record.PosStdDev.XStdDev;
        const double y = record.PosStdDev.YStdDev;
        const double z = record.PosStdDev.ZStdDev;
        if (record.Position_Cov) {
            setVariances(position, {x * x, y * y, z * z, record.PosCov.CovXY, record.PosCov.CovXZ,
                                    record.PosCov.CovYZ});
        } else {
            position.level = AccuracyLevel::Sigma;
            position.spatialAccuracy = std::hypot(x, y, z);
        }
    }
    if (record.Attitude)
        setAttitude(position, record.Att);
    if (record.Velocity)
        setEarthFixedVelocity(position, record.Vel.Vx, record.Vel.Vy, record.Vel.Vz);
    return true;
}

template<typename Record>
bool readAs(const void* record, Position& position)
{
    return read(*static_cast<const Record*>(record), position);
}

struct Reader {
    PositionSource source;
    bool (*read)(const void* record, Position& position);
};

template<typename Record>
Reader readerOf(bool isInertial, bool isEarthCentred, const char* describe)
{
    constexpr uint32_t type = TQX_recordTypeOf<Record>;
    const TQX_TypeLayout& layout = *TQX_layout(type);
    return {{layout.name, layout.blockNumber, type, isInertial, isEarthCentred, describe},
            readAs<Record>};
}

const std::vector<Reader>& readers()
{
    static const std::vector<Reader> all = {
        readerOf<TQX_INSNavGeod1_s>(true, false, "GNSS and inertial sensors, geodetic"),
        readerOf<TQX_INSNavCart1_s>(true, true, "GNSS and inertial sensors, Cartesian"),
        readerOf<TQX_IntPVAAGeod1_s>(true, false, "GNSS and inertial sensors, with attitude"),
        readerOf<TQX_IntPVGeod1_s>(true, false, "GNSS and inertial sensors, geodetic"),
        readerOf<TQX_IntPVCart1_s>(true, true, "GNSS and inertial sensors, Cartesian"),
        readerOf<TQX_PVTGeodetic2_s>(false, false, "GNSS, geodetic"),
        readerOf<TQX_PVTCartesian2_s>(false, true, "GNSS, Cartesian"),
        readerOf<TQX_PosCart_s>(false, true, "GNSS, Cartesian with variances"),
        readerOf<TQX_PVTGeodetic1_s>(false, false, "GNSS, geodetic, older block"),
        readerOf<TQX_PVTCartesian1_s>(false, true, "GNSS, Cartesian, older block"),
        readerOf<TQX_PVTGeodeticAuth1_s>(false, false, "GNSS, authenticated satellites only"),
        readerOf<TQX_PosLocal1_s>(false, false, "GNSS, in a local datum"),
    };
    return all;
}

} // namespace

const std::vector<PositionSource>& positionSources()
{
    static const std::vector<PositionSource> sources = [] {
        std::vector<PositionSource> all;
        for (const Reader& reader : readers())
            all.push_back(reader.source);
        return all;
    }();
    return sources;
}

const PositionSource* positionSource(uint16_t blockNumber)
{
    for (const PositionSource& source : positionSources())
        if (source.number == blockNumber)
            return &source;
    return nullptr;
}

const PositionSource* positionSource(std::string_view name)
{
    for (const PositionSource& source : positionSources())
        if (equalNames(source.name, name) || std::to_string(source.number) == name)
            return &source;
    return nullptr;
}

bool readPosition(const void* record, Position& position)
{
    const auto& header = *static_cast<const TQX_MainHeader_s*>(record);
    const auto time = gnssMillis(header.TOW, header.WNc);
    const auto reader =
        std::find_if(readers().begin(), readers().end(), [&header](const Reader& candidate) {
            return candidate.source.recordType == header.korcg_type;
        });
    if (reader == readers().end() || !time)
        return false;
    position = {};
    if (!reader->read(record, position)) {
        const std::string_view mode = position.mode;
        position = {};
        position.mode = mode;
    }
    position.source = &positionSources()[static_cast<size_t>(reader - readers().begin())];
    position.time = *time;
    return true;
}

} // namespace tqx
