list(APPEND public_headers table/RowWriter.h)
target_sources(tqx-gnss PRIVATE table/RowWriter.cpp)
