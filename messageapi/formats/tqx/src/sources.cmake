# Hand-written stream services of the plug-in. Headers that declare QObjects are listed for moc.
set(TQX_SERVICE_HEADERS
    src/TQXDecoder.h
    src/TQXSynchronizer.h
    src/TQXUtils.h
    src/TQX_DiffCorrIn_Extractor.h
    src/TqxTimeSource.h)

set(TQX_SERVICE_SOURCES
    ${TQX_SERVICE_HEADERS}
    src/TQXDecoder.cpp
    src/TQXSynchronizer.cpp
    src/TQXUtils.cpp
    src/TQX_DiffCorrIn_Extractor.cpp
    src/TQX_StartUp.cpp
    src/TqxTimeSource.cpp)
