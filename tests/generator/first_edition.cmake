# Compares the names, numbers and places of the first edition with those that are frozen.
#
# usage: cmake -DGENERATOR=<korcg-generate> -DDESCRIPTION=<folder> -DFROZEN=<file> -DOUTPUT=<folder>
#              -P first_edition.cmake
cmake_minimum_required(VERSION 3.25)
execute_process(COMMAND "${GENERATOR}" --description "${DESCRIPTION}" --edition 1 --only names
    --output "${OUTPUT}" COMMAND_ERROR_IS_FATAL ANY)
file(STRINGS "${OUTPUT}/names.txt" now)
file(STRINGS "${FROZEN}" frozen)
list(LENGTH frozen count)
if(count LESS 4000)
    message(FATAL_ERROR "${FROZEN} has ${count} lines only")
endif()
if(now STREQUAL frozen)
    message(STATUS "${count} lines are as frozen")
    return()
endif()
foreach(line other IN ZIP_LISTS frozen now)
    if(NOT line STREQUAL other)
        message(FATAL_ERROR "the first edition has '${other}' where '${line}' is frozen")
    endif()
endforeach()
message(FATAL_ERROR "the first edition has more than ${FROZEN}")
