list(APPEND public_headers
    rinex/LogSurvey.h
    rinex/ObservationFile.h
    rinex/RinexName.h
    rinex/RinexOptions.h
    rinex/SetUp.h)
target_sources(tqx-gnss PRIVATE
    rinex/HeaderText.cpp
    rinex/LogSurvey.cpp
    rinex/ObservationFile.cpp
    rinex/ObservationHeader.cpp
    rinex/RinexName.cpp
    rinex/SetUp.cpp)
