# What an installation holds: libraries, public headers, a CMake package and pkg-config files. Headers
# of the format and of the host are flat and include each other by bare name; those below tqx/ in
# this repository keep their path. The tool's folder installs the tool.

include(CMakePackageConfigHelpers)

set(TQX_INSTALL_INCLUDEDIR "${CMAKE_INSTALL_INCLUDEDIR}/tqx")
set(TQX_INSTALL_CMAKEDIR "${CMAKE_INSTALL_LIBDIR}/cmake/TQX")

# tqx_install_library(<export set> <target>): the library, the headers that its PUBLIC_HEADER names
# and its export header.
function(tqx_install_library set target)
    get_target_property(headers ${target} PUBLIC_HEADER)
    get_target_property(source_dir ${target} SOURCE_DIR)
    get_target_property(binary_dir ${target} BINARY_DIR)
    file(RELATIVE_PATH path "${PROJECT_SOURCE_DIR}" "${source_dir}")
    string(REPLACE "-" "_" file "${target}")
    list(TRANSFORM headers PREPEND "${source_dir}/" OUTPUT_VARIABLE documented)
    set_property(GLOBAL APPEND PROPERTY TQX_PUBLIC_HEADERS ${documented})
    if(path MATCHES "^tqx/")
        foreach(header IN LISTS headers)
            get_filename_component(folder "${path}/${header}" DIRECTORY)
            install(FILES "${source_dir}/${header}"
                DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${folder}" COMPONENT dev)
        endforeach()
        set(headers)
    else()
        list(TRANSFORM headers PREPEND "${source_dir}/")
    endif()
    list(APPEND headers "${binary_dir}/include/${file}_export.h")
    set_property(TARGET ${target} PROPERTY PUBLIC_HEADER "${headers}")
    install(TARGETS ${target} EXPORT ${set}
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime
            NAMELINK_COMPONENT dev
        RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT runtime
        ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT dev
        PUBLIC_HEADER DESTINATION "${TQX_INSTALL_INCLUDEDIR}" COMPONENT dev
        INCLUDES DESTINATION "${TQX_INSTALL_INCLUDEDIR}" "${CMAKE_INSTALL_INCLUDEDIR}")
endfunction()

foreach(target IN ITEMS korcg tqx-framing tqx-codec)
    tqx_install_library(TQXCodecTargets ${target})
endforeach()
if(TQX_BUILD_TOOL)
    tqx_install_library(TQXLogTargets tqx-log)
    tqx_install_library(TQXGnssTargets tqx-gnss)
endif()
if(TQX_BUILD_PLUGIN)
    foreach(target IN ITEMS korguibase korcomm messageapi tqx)
        tqx_install_library(TQXPluginTargets ${target})
    endforeach()
endif()

install(DIRECTORY "${PROJECT_BINARY_DIR}/messageapi/formats/tqx/src/generated/"
    DESTINATION "${TQX_INSTALL_INCLUDEDIR}" COMPONENT dev
    FILES_MATCHING PATTERN "*.h"
    PATTERN "tests" EXCLUDE
    PATTERN "TQX_codec_internal.h" EXCLUDE
    PATTERN "TQX_TypeRows.h" EXCLUDE)

# find_package(TQX [COMPONENTS codec log gnss plugin])
set(export_sets TQXCodecTargets)
set(pkgconfig_files tqx-codec)
if(TQX_BUILD_TOOL)
    list(APPEND export_sets TQXLogTargets TQXGnssTargets)
    list(APPEND pkgconfig_files tqx-log tqx-gnss)
endif()
if(TQX_BUILD_PLUGIN)
    list(APPEND export_sets TQXPluginTargets)
    list(APPEND pkgconfig_files tqx)
endif()
foreach(set IN LISTS export_sets)
    install(EXPORT ${set} NAMESPACE TQX:: DESTINATION "${TQX_INSTALL_CMAKEDIR}" COMPONENT dev)
endforeach()
configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/TQXConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/TQXConfig.cmake" INSTALL_DESTINATION "${TQX_INSTALL_CMAKEDIR}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/TQXConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/TQXConfig.cmake"
    "${PROJECT_BINARY_DIR}/TQXConfigVersion.cmake"
    DESTINATION "${TQX_INSTALL_CMAKEDIR}" COMPONENT dev)

# The files say where they are relative to themselves, so that an installation can be moved.
file(RELATIVE_PATH TQX_PREFIX_FROM_PKGCONFIG "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" TQX_PREFIX_FROM_PKGCONFIG "${TQX_PREFIX_FROM_PKGCONFIG}")
foreach(name IN LISTS pkgconfig_files)
    configure_file("${CMAKE_CURRENT_LIST_DIR}/${name}.pc.in"
        "${PROJECT_BINARY_DIR}/${name}.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/${name}.pc"
        DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT dev)
endforeach()
