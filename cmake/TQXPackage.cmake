# Debian packages by CPack: "tqx" (libraries and tool) and "libtqx-dev".

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tqx)
set(CPACK_PACKAGE_VENDOR "The TQX project")
set(CPACK_PACKAGE_CONTACT "The TQX project <maintainers@tqx.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime dev)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME tqx)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION
    "Libraries and tool for the TQX block format of GNSS receivers
 Shared libraries that cut, decode, describe and encode TQX blocks, and the
 program tqx, which reports on, decodes, cuts, encodes and simulates logs.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_GENERATE_SHLIBS ON)

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libtqx-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_DESCRIPTION
    "Headers of the libraries for the TQX block format of GNSS receivers
 Headers, CMake package and pkg-config files.")
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "tqx (= ${PROJECT_VERSION})")
if(TQX_BUILD_PLUGIN)
    string(APPEND CPACK_DEBIAN_DEV_PACKAGE_DEPENDS ", qtbase5-dev (>= 5.15)")
endif()

set(packages runtime tqx dev libtqx-dev)
while(packages)
    list(POP_FRONT packages component package)
    install(FILES "${CMAKE_CURRENT_LIST_DIR}/debian-copyright" RENAME copyright
        DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${package}" COMPONENT ${component})
endwhile()

include(CPack)
