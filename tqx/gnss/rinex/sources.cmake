list(APPEND public_headers
    rinex/LogSurvey.h
    rinex/NavigationFile.h
    rinex/ObservationFile.h
    rinex/RinexFiles.h
    rinex/RinexName.h
    rinex/RinexOptions.h
    rinex/SetUp.h)
target_sources(tqx-gnss PRIVATE
    rinex/EphemerisLayout.cpp
    rinex/HeaderText.cpp
    rinex/LogSurvey.cpp
    rinex/NavigationFile.cpp
    rinex/ObservationFile.cpp
    rinex/ObservationHeader.cpp
    rinex/PulseList.cpp
    rinex/RinexFiles.cpp
    rinex/RinexName.cpp
    rinex/SetUp.cpp)
