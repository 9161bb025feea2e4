list(APPEND public_headers
    observation/EpochSelection.h
    observation/LockTracker.h
    observation/Observation.h
    observation/ObservationGatherer.h
    observation/ObservationTable.h
    observation/SatelliteId.h
    observation/SignalCode.h)
target_sources(tqx-gnss PRIVATE
    observation/CompactReader.cpp
    observation/EpochSelection.cpp
    observation/LockTracker.cpp
    observation/ObservationGatherer.cpp
    observation/ObservationTable.cpp
    observation/SatelliteId.cpp
    observation/SignalCode.cpp)
