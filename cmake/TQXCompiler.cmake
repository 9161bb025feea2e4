# Language level, visibility and warnings that every target of the project shares.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

# Unique symbols would keep the plug-in from ever being unloaded.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-fno-gnu-unique)
endif()

# Libraries find each other, and the tool finds them, wherever they are installed together.
file(RELATIVE_PATH libraries_from_programs "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
set(CMAKE_INSTALL_RPATH "$ORIGIN/${libraries_from_programs}")
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME runtime)

if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    find_program(TQX_CCACHE ccache)
    if(TQX_CCACHE)
        set(CMAKE_CXX_COMPILER_LAUNCHER "${TQX_CCACHE}")
    endif()
endif()

include(GenerateExportHeader)
include(CheckLinkerFlag)
check_linker_flag(CXX "-Wl,-Bsymbolic-functions" TQX_HAVE_BSYMBOLIC_FUNCTIONS)
check_linker_flag(CXX "-Wl,-Bsymbolic" TQX_HAVE_BSYMBOLIC)
check_linker_flag(CXX "-Wl,-z,pack-relative-relocs" TQX_HAVE_PACKED_RELOCATIONS)
check_linker_flag(CXX "-Wl,--sort-section=name" TQX_HAVE_SORTED_SECTIONS)

# tqx_library(<name> <MACRO>): settings of one shared library of the project.
# <MACRO> is its export macro, defined in the generated header <name>_export.h
# (a hyphen in the name becomes an underscore).
function(tqx_library name macro)
    string(REPLACE "-" "_" file "${name}")
    generate_export_header(${name}
        EXPORT_MACRO_NAME ${macro}
        EXPORT_FILE_NAME "${CMAKE_CURRENT_BINARY_DIR}/include/${file}_export.h")
    target_include_directories(${name} PUBLIC
        "$<BUILD_INTERFACE:${CMAKE_CURRENT_BINARY_DIR}/include>"
        "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/tqx>")
    target_compile_features(${name} PUBLIC cxx_std_17)
    add_library(TQX::${name} ALIAS ${name})
    set_target_properties(${name} PROPERTIES
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
        INSTALL_RPATH "$ORIGIN")
    if(TQX_HAVE_BSYMBOLIC_FUNCTIONS)
        target_link_options(${name} PRIVATE "-Wl,-Bsymbolic-functions")
    endif()
    if(TQX_HAVE_PACKED_RELOCATIONS)
        target_link_options(${name} PRIVATE "-Wl,-z,pack-relative-relocs")
    endif()
endfunction()

# tqx_static_twin(<name> <twin>...): <name>-static, an archive of the objects of the shared library
# <name>, which needs the other twins. Built only for what links to it.
function(tqx_static_twin name)
    add_library(${name}-static STATIC EXCLUDE_FROM_ALL "$<TARGET_OBJECTS:${name}>")
    set_target_properties(${name}-static PROPERTIES LINKER_LANGUAGE CXX)
    target_include_directories(${name}-static INTERFACE
        "$<TARGET_PROPERTY:${name},INTERFACE_INCLUDE_DIRECTORIES>")
    target_link_libraries(${name}-static INTERFACE ${ARGN})
endfunction()

# tqx_link_either(<target> <name>...): links a static library to shared libraries of the project, or,
# in programs that have the property TQX_STATIC, to their static twins.
function(tqx_link_either target)
    foreach(name IN LISTS ARGN)
        target_link_libraries(${target} PUBLIC
            "$<IF:$<BOOL:$<TARGET_PROPERTY:TQX_STATIC>>,${name}-static,${name}>")
    endforeach()
endfunction()

# tqx_warnings(<target>): the warnings that hand-written code is held to.
function(tqx_warnings name)
    if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
        target_compile_options(${name} PRIVATE
            -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
    elseif(MSVC)
        target_compile_options(${name} PRIVATE /W4 /WX)
    endif()
endfunction()
