list(APPEND public_headers
    position/Attitude.h
    position/Dilution.h
    position/Position.h
    position/PositionBlocks.h
    position/SourceChoice.h)
target_sources(tqx-gnss PRIVATE
    position/Attitude.cpp
    position/Dilution.cpp
    position/FieldNames.cpp
    position/PositionBlocks.cpp
    position/PositionFilling.cpp
    position/SourceChoice.cpp)
