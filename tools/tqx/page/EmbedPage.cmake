# Assembles the page of reports, and writes it as a C++ header.
# cmake -DSOURCE=FOLDER -DLIBRARY=FOLDER -DOUTPUT=FILE -P EmbedPage.cmake
file(READ "${SOURCE}/report.html" page)
set(parts
    PLOT_STYLE "${LIBRARY}/dist/uPlot.min.css"
    PLOT_SCRIPT "${LIBRARY}/dist/uPlot.iife.min.js"
    PLOT_LICENCE "${LIBRARY}/LICENSE"
    STYLE "${SOURCE}/report.css"
    SCRIPT "${SOURCE}/report.js")
while(parts)
    list(POP_FRONT parts mark file)
    file(READ "${file}" text)
    string(REPLACE "@${mark}@" "${text}" page "${page}")
endwhile()
file(WRITE "${OUTPUT}.html" "${page}")
file(READ "${OUTPUT}.html" bytes HEX)
string(REGEX REPLACE "(..)" "0x\\1," bytes "${bytes}")
file(WRITE "${OUTPUT}"
"// Made by EmbedPage.cmake from the files of tools/tqx/page.
#pragma once

#include <string_view>

namespace tqx::tool::assets
{

inline constexpr unsigned char pageBytes[] = {${bytes}};

/// The page, in which data go to the place of a mark.
inline std::string_view page()
{
    return {reinterpret_cast<const char*>(pageBytes), sizeof pageBytes};
}

} // namespace tqx::tool::assets
")
