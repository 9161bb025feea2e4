#pragma once

#include "tqx/gnss/track/TrackWriter.h"

/// One writer for each format.
namespace tqx
{

std::unique_ptr<TrackWriter> makeCsvTrack(Buffer& out);

/// GPX 1.1: a track with a segment for each line. Elevations are above the geoid, or above the
/// ellipsoid when its undulation is not known.
std::unique_ptr<TrackWriter> makeGpxTrack(Buffer& out, std::string_view name);

/// KML 2.2 (OGC 07-147r2): a line for each stretch of one mode, coloured by it, at its height above
/// the geoid, or on the ground when the undulation is not known.
std::unique_ptr<TrackWriter> makeKmlTrack(Buffer& out, std::string_view name);

/// RFC 7946: a feature with a point and its properties for each position. Heights are above the
/// ellipsoid.
std::unique_ptr<TrackWriter> makeGeoJsonTrack(Buffer& out, std::string_view name);

/// NMEA 0183: the sentences GGA, RMC and ZDA of each position; without a position, with only those
/// fields that say so.
std::unique_ptr<TrackWriter> makeNmeaTrack(Buffer& out);

} // namespace tqx
