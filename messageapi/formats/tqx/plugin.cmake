# The plug-in: messages, metadata, registry and stream services.

tqx_numbered(files TQX_Messages_ 16)
tqx_type_headers(_Message)
tqx_generate(messages
    FILES ${files} TQX_MessageFactory.cpp tests/TQX_MessageAccessors.cpp
    HEADERS ${headers} TQX_Messages.h TQX_MessageFactory.h tests/TQX_MessageAccessors.h)
# Written for the tests of the messages only.
list(FILTER TQX_GENERATED_messages EXCLUDE REGEX "/tests/")
tqx_numbered(files TQX_Metadata_ 16)
tqx_type_headers(_MessageInfo _FieldInfos)
tqx_generate(metadata
    FILES ${files} TQX_Registration.cpp
    HEADERS ${headers} TQX_TypeRows.h)

# Nothing runs often enough in the metadata to be worth more time in the compiler.
set_source_files_properties(${TQX_GENERATED_metadata} PROPERTIES COMPILE_OPTIONS
    "$<$<AND:$<CXX_COMPILER_ID:GNU,Clang>,$<CONFIG:Release,RelWithDebInfo>>:-O1>")

include(src/sources.cmake)
# The few classes with signals and slots are named: scanning all generated files would take longer.
set(qobjects ${TQX_SERVICE_HEADERS})
list(REMOVE_ITEM qobjects src/TQXUtils.h)
qt5_wrap_cpp(moc_sources ${qobjects})

add_library(tqx SHARED
    src/messages/TQX_MessageErrors.cpp
    src/messages/TQX_RawString.cpp
    src/metadata/TQX_FieldAccess.cpp
    src/metadata/TQX_FieldInfo.cpp
    src/metadata/TQX_FormatInfo.cpp
    src/metadata/TQX_MessageInfo.cpp
    src/metadata/TQX_SharedText.cpp
    src/metadata/TQX_SymbolNames.cpp
    ${TQX_SERVICE_SOURCES}
    ${moc_sources}
    ${TQX_GENERATED_messages}
    ${TQX_GENERATED_metadata})
tqx_library(tqx TQX_API)
set(public_headers
    ${TQX_SERVICE_HEADERS}
    src/messages/TQX_MessageErrors.h
    src/messages/TQX_SubMessages.h
    src/metadata/TQX_FieldInfo.h
    src/metadata/TQX_FieldRow.h
    src/metadata/TQX_FormatInfo.h
    src/metadata/TQX_MessageInfo.h)
set_target_properties(tqx PROPERTIES
    PUBLIC_HEADER "${public_headers}")
target_include_directories(tqx PUBLIC
    "$<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/src>"
    "$<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/src/messages>"
    "$<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/src/metadata>"
    "$<BUILD_INTERFACE:${generated}>")
target_link_libraries(tqx PUBLIC tqx-codec messageapi korcomm korguibase)
# Thousands of exported classes would otherwise be looked up by name at every start.
if(TQX_HAVE_BSYMBOLIC)
    target_link_options(tqx PRIVATE "-Wl,-Bsymbolic")
endif()
# Each singleton is written after its guard has been read. Apart from the guards, its page comes into
# being when it is written; a page that is read first costs a second fault.
if(TQX_HAVE_SORTED_SECTIONS)
    set_property(SOURCE ${TQX_GENERATED_metadata} APPEND PROPERTY COMPILE_OPTIONS -fdata-sections)
    target_link_options(tqx PRIVATE "-Wl,--sort-section=name")
endif()
# The generated headers are written together with the codec's.
add_dependencies(tqx tqx-codec)
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    target_compile_options(tqx PRIVATE -Wall -Wextra -Werror)
endif()
