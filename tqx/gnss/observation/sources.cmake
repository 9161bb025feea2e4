list(APPEND public_headers
    observation/Observation.h
    observation/SatelliteId.h
    observation/SignalCode.h)
target_sources(tqx-gnss PRIVATE
    observation/SatelliteId.cpp
    observation/SignalCode.cpp)
