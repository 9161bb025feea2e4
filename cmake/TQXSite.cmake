# The target `site`: the guide, the reference of the format and the API as HTML, in site/ of the
# build folder.

get_property(headers GLOBAL PROPERTY TQX_PUBLIC_HEADERS)
list(JOIN headers "\n" headers)
file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/public_headers.txt" CONTENT "${headers}\n" @ONLY)
get_property(reference GLOBAL PROPERTY TQX_REFERENCE_DIR)
add_custom_target(site
    COMMAND "${PROJECT_SOURCE_DIR}/scripts/site" "${reference}"
        "${PROJECT_BINARY_DIR}/public_headers.txt" "${PROJECT_BINARY_DIR}/site"
    DEPENDS tqx-reference
    COMMENT "Writing the site to ${PROJECT_BINARY_DIR}/site"
    VERBATIM)

# The site includes the reference; without it, the reference is there alone.
set(html "${CMAKE_INSTALL_DATADIR}/doc/tqx-doc/html")
install(DIRECTORY "${reference}/" DESTINATION "${html}/reference" COMPONENT doc)
install(DIRECTORY "${PROJECT_BINARY_DIR}/site/" DESTINATION "${html}" COMPONENT doc OPTIONAL)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples/"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/libtqx-dev/examples" COMPONENT dev
    FILES_MATCHING PATTERN "*.cpp" PATTERN "*.h" PATTERN "CMakeLists.txt")
