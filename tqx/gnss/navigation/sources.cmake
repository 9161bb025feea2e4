list(APPEND public_headers
    navigation/Ephemeris.h
    navigation/NavigationStore.h
    navigation/NavigationTable.h
    navigation/SystemData.h)
target_sources(tqx-gnss PRIVATE
    navigation/Ephemeris.cpp
    navigation/GlonassEphemeris.cpp
    navigation/KeplerEphemeris.cpp
    navigation/NavigationStore.cpp
    navigation/NavigationTable.cpp
    navigation/SatellitePosition.cpp
    navigation/SystemData.cpp)
