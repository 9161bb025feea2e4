# The page of `tqx report`: the plot library is installed by npm, with its hash in
# package-lock.json, and bundled with the page into the program.
option(TQX_REPORT_PAGE "Let tqx report write pages for browsers (needs npm)" ON)

set(page_source "${CMAKE_CURRENT_LIST_DIR}")
set(page_folder "${CMAKE_CURRENT_BINARY_DIR}/page")
set(plot_library "${page_folder}/node_modules/uplot")
if(TQX_REPORT_PAGE)
    find_program(TQX_NPM npm)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
        "${page_source}/package.json" "${page_source}/package-lock.json")
    file(SHA256 "${page_source}/package-lock.json" page_lock)
    set(installed "")
    if(EXISTS "${page_folder}/installed")
        file(READ "${page_folder}/installed" installed)
    endif()
    if(TQX_NPM AND NOT installed STREQUAL page_lock)
        file(COPY "${page_source}/package.json" "${page_source}/package-lock.json"
            DESTINATION "${page_folder}")
        execute_process(
            COMMAND "${TQX_NPM}" ci --ignore-scripts --no-audit --no-fund --loglevel=error
            WORKING_DIRECTORY "${page_folder}"
            TIMEOUT 120 RESULT_VARIABLE npm_result OUTPUT_QUIET ERROR_QUIET)
        if(npm_result EQUAL 0)
            file(WRITE "${page_folder}/installed" "${page_lock}")
            set(installed "${page_lock}")
        endif()
    endif()
    if(installed STREQUAL page_lock)
        add_custom_command(
            OUTPUT "${page_folder}/ReportAssets.h"
            COMMAND "${CMAKE_COMMAND}" "-DSOURCE=${page_source}" "-DLIBRARY=${plot_library}"
                "-DOUTPUT=${page_folder}/ReportAssets.h" -P "${page_source}/EmbedPage.cmake"
            DEPENDS "${page_source}/EmbedPage.cmake" "${page_source}/report.html"
                "${page_source}/report.css" "${page_source}/report.js"
                "${page_source}/package-lock.json"
            COMMENT "Bundling the page of reports"
            VERBATIM)
        target_sources(tqx-report PRIVATE "${page_folder}/ReportAssets.h")
        target_include_directories(tqx-report PRIVATE "${page_folder}")
        set_source_files_properties(output/ReportPage.cpp PROPERTIES
            COMPILE_DEFINITIONS TQX_REPORT_PAGE
            OBJECT_DEPENDS "${page_folder}/ReportAssets.h")
    else()
        message(STATUS "tqx report will not write pages: npm is missing or has no network")
    endif()
endif()
