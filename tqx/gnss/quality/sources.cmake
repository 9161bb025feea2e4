list(APPEND public_headers
    quality/Figures.h
    quality/Quality.h
    quality/QualityGatherer.h
    quality/Reference.h)
target_sources(tqx-gnss PRIVATE
    quality/AntennaAnalysis.cpp
    quality/ArcAnalysis.cpp
    quality/Episodes.cpp
    quality/EpochFollower.cpp
    quality/Figures.cpp
    quality/PositionQuality.cpp
    quality/QualityGatherer.cpp
    quality/ReceiverQuality.cpp
    quality/SignalStrength.cpp
    quality/SkyView.cpp
    quality/SystemWatch.cpp
    quality/ThinnedSeries.cpp
    quality/Verdicts.cpp)
