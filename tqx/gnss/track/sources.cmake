list(APPEND public_headers
    track/GeoPackage.h
    track/TrackWriter.h)
target_sources(tqx-gnss PRIVATE
    track/CsvTrack.cpp
    track/GeoJsonTrack.cpp
    track/GeoPackage.cpp
    track/GpxTrack.cpp
    track/KmlTrack.cpp
    track/NmeaTrack.cpp
    track/TrackText.cpp
    track/TrackWriter.cpp)
