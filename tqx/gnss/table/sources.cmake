list(APPEND public_headers table/DatabaseTable.h table/TableRows.h table/TextTable.h)
target_sources(tqx-gnss PRIVATE table/DatabaseTable.cpp table/TableRows.cpp table/TextTable.cpp)
