#pragma once

#include "tqx/gnss/position/Position.h"
#include "tqx/log/text/Buffer.h"
#include "tqx_gnss_export.h"

#include <memory>
#include <string_view>
#include <vector>

namespace tqx
{

/// Text formats of tracks.
enum class TrackFormat { Csv, Gpx, Kml, GeoJson, Nmea };

/// Writes positions of one source into a buffer, which may be emptied between any two calls.
/// A line of a track ends where there is no position and where the time runs back or has a gap.
class TQX_GNSS_API TrackWriter
{
public:
    virtual ~TrackWriter() = default;
    TrackWriter(const TrackWriter&) = delete;
    TrackWriter& operator=(const TrackWriter&) = delete;

    /// To be called once before all positions.
    virtual void begin() {}

    /// Adds a position, in the order of the log; also those with Fix::None, which only NMEA shows.
    virtual void add(const Position& position) = 0;

    /// To be called once after all positions; most files are incomplete without it.
    virtual void end() {}

protected:
    explicit TrackWriter(Buffer& out) : m_out(out) {}

    Buffer& m_out;
};

/// Makes a writer that appends to `out`, which must outlive it. `name` is the track's name.
TQX_GNSS_API std::unique_ptr<TrackWriter> makeTrackWriter(TrackFormat format, Buffer& out,
                                                          std::string_view name);

} // namespace tqx
