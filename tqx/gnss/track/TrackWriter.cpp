#include "tqx/gnss/track/TrackWriter.h"

#include "tqx/gnss/track/Writers.h"

namespace tqx
{

std::unique_ptr<TrackWriter> makeTrackWriter(TrackFormat format, Buffer& out, std::string_view name)
{
    switch (format) {
    case TrackFormat::Gpx:
        return makeGpxTrack(out, name);
    case TrackFormat::Kml:
        return makeKmlTrack(out, name);
    case TrackFormat::GeoJson:
        return makeGeoJsonTrack(out, name);
    case TrackFormat::Nmea:
        return makeNmeaTrack(out);
    case TrackFormat::Csv:
        break;
    }
    return makeCsvTrack(out);
}

} // namespace tqx
