# Generates everything of the first edition from the description as it is and from one that has
# grown, and compares the files.
#
# usage: cmake -DGENERATOR=<korcg-generate> -DREAL=<folder> -DLATER=<folder> -DOUTPUT=<folder>
#              -P first_is_frozen.cmake
cmake_minimum_required(VERSION 3.25)
file(REMOVE_RECURSE "${OUTPUT}")
foreach(which IN ITEMS REAL LATER)
    execute_process(COMMAND "${GENERATOR}" --description "${${which}}" --edition 1
        --output "${OUTPUT}/${which}" COMMAND_ERROR_IS_FATAL ANY)
    file(GLOB_RECURSE ${which}_files RELATIVE "${OUTPUT}/${which}" "${OUTPUT}/${which}/*")
endforeach()
if(NOT REAL_files STREQUAL LATER_files)
    message(FATAL_ERROR "other files are generated from the grown description")
endif()
list(LENGTH REAL_files count)
if(count LESS 100)
    message(FATAL_ERROR "only ${count} files were generated")
endif()
foreach(name IN LISTS REAL_files)
    file(SHA256 "${OUTPUT}/REAL/${name}" real)
    file(SHA256 "${OUTPUT}/LATER/${name}" later)
    if(NOT real STREQUAL later)
        message(FATAL_ERROR "${name} differs")
    endif()
endforeach()
message(STATUS "${count} files are the same")
