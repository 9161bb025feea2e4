#include "tqx/gnss/position/PositionBlocks.h"

#include "tqx/gnss/position/FieldNames.h"
#include "tqx/gnss/position/PositionFilling.h"
#include "tqx/log/record/TypeNames.h"

#include "TQX_codec.h"

#include <algorithm>
#include <string>

namespace tqx
{

using namespace Kor::MessageApi;
using namespace filling;

namespace
{

/// False, like all functions below, when there is no solution.
template<typename Record>
bool readMode(const Record& record, unsigned mode, const char* field, Position& position)
{
    position.mode = valueName(record.korcg_type, field, mode);
    position.datum = valueName(record.korcg_type, "Datum", record.Datum);
    position.fix = record.Error == 0 ? fixOfMode(mode) : Fix::None;
    return position.fix != Fix::None;
}

/// Fields that the newer and older GNSS blocks have in common.
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
    if (record.Revision >= 1) {
        position.satellites = record.NrSV;
    } else {
        position.datum = {};
    }
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
        setBounds(position, known(record.HAccuracy, 0.01), known(record.VAccuracy, 0.01));
    setVelocity(position, record.Vn, record.Ve, record.Vu);
    return readInertial(record, record.GNSSMode, position) &&
           setPlace(position, record.Latitude, record.Longitude, record.Height);
}

bool read(const TQX_IntPVCart1_s& record, Position& position)
{
    position.satellites = record.NrSV == 255 ? -1 : record.NrSV;
    if (record.Revision >= 1)
        setBounds(position, notKnown, notKnown, known(record.PosAccuracy, 0.01));
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
    if (record.Position_StdDev) {
        setDeviations(position, record.PosStdDev.LatStdDev, record.PosStdDev.LonStdDev,
                      record.PosStdDev.AltStdDev);
    }
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
            setVariances(position, {x * x, y * y, z * z, record.PosCov.Cov_XY, record.PosCov.Cov_XZ,
                                    record.PosCov.Cov_YZ});
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
    for (const PositionSource& source : positionSources()) {
        if (source.number == blockNumber)
            return &source;
    }
    return nullptr;
}

const PositionSource* positionSource(std::string_view name)
{
    for (const PositionSource& source : positionSources()) {
        if (equalNames(source.name, name) || std::to_string(source.number) == name)
            return &source;
    }
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
