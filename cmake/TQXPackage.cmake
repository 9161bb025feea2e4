# Debian packages by CPack: "tqx" (libraries and tool), "libtqx-dev", and "tqx-doc" with the reference
# of the format or, where the target `site` was built before, the whole site.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tqx)
set(CPACK_PACKAGE_VENDOR "The TQX project")
set(CPACK_PACKAGE_CONTACT "The TQX project <maintainers@tqx.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime dev doc)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME tqx)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION
    "tool and libraries for the TQX block format of GNSS receivers
The program tqx summarises, shows, selects, converts, encodes and simulates
logs of receivers. The shared libraries frame, find, select, decode, describe
and encode the blocks.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${PROJECT_BINARY_DIR}/debian/triggers")
configure_file("${CMAKE_CURRENT_LIST_DIR}/debian-triggers"
    "${PROJECT_BINARY_DIR}/debian/triggers" COPYONLY)

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libtqx-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_DESCRIPTION
    "headers of the libraries for the TQX block format of GNSS receivers
Headers, CMake package and pkg-config files for programs that read or write
TQX blocks: the codec and the blocks of logs in plain C++, messages and
metadata for Qt.")
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "tqx (= ${PROJECT_VERSION})")
if(TQX_BUILD_PLUGIN)
    string(APPEND CPACK_DEBIAN_DEV_PACKAGE_DEPENDS ", qtbase5-dev (>= 5.15)")
endif()

set(CPACK_DEBIAN_DOC_PACKAGE_NAME tqx-doc)
set(CPACK_DEBIAN_DOC_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOC_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DOC_DESCRIPTION
    "documents of the TQX block format of GNSS receivers
The guide to the tool and the libraries, the API, and a reference of all blocks
and fields of the format, as HTML.")

# What a Debian package documents itself with.
find_program(TQX_GZIP gzip)
set(packages runtime tqx dev libtqx-dev doc tqx-doc)
while(packages)
    list(POP_FRONT packages component package)
    install(FILES "${CMAKE_CURRENT_LIST_DIR}/debian-copyright" RENAME copyright
        DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${package}" COMPONENT ${component})
    if(EXISTS "${CMAKE_CURRENT_LIST_DIR}/debian-lintian-${package}")
        install(FILES "${CMAKE_CURRENT_LIST_DIR}/debian-lintian-${package}" RENAME ${package}
            DESTINATION "${CMAKE_INSTALL_DATADIR}/lintian/overrides" COMPONENT ${component})
    endif()
    if(TQX_GZIP)
        set(changelog "${PROJECT_BINARY_DIR}/debian/${package}/changelog")
        configure_file("${CMAKE_CURRENT_LIST_DIR}/debian-changelog.in" "${changelog}" @ONLY)
        execute_process(COMMAND "${TQX_GZIP}" -9nkf "${changelog}" COMMAND_ERROR_IS_FATAL ANY)
        install(FILES "${changelog}.gz"
            DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${package}" COMPONENT ${component})
    endif()
endwhile()

include(CPack)
