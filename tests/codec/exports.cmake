# Counts the functions that the codec exports with C linkage.
#
# usage: cmake -DNM=<nm> -DLIBRARY=<libtqx-codec> -P exports.cmake
if(NOT NM OR NOT EXISTS "${LIBRARY}")
    message(FATAL_ERROR "no nm or no library '${LIBRARY}'")
endif()
execute_process(COMMAND "${NM}" --dynamic --defined-only "${LIBRARY}"
    OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
foreach(expected IN ITEMS init=383 encode=243 append=80 decode=382)
    string(REGEX REPLACE "=.*" "" family "${expected}")
    string(REGEX REPLACE ".*=" "" count "${expected}")
    # C++ symbols would be mangled and so have another beginning.
    string(REGEX MATCHALL " T TQX_${family}_[A-Za-z0-9_]+" found "${symbols}")
    list(REMOVE_DUPLICATES found)
    list(LENGTH found length)
    if(NOT length EQUAL count)
        message(FATAL_ERROR "${length} TQX_${family}_ functions, expected ${count}")
    endif()
    message(STATUS "${length} TQX_${family}_ functions")
endforeach()
