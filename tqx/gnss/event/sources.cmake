list(APPEND public_headers
    event/Event.h
    event/EventGatherer.h
    event/EventWriter.h)
target_sources(tqx-gnss PRIVATE
    event/EventGatherer.cpp
    event/EventWriter.cpp)
