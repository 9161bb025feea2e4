# Runs COMMAND and compares what it prints with the file EXPECTED.
execute_process(COMMAND ${COMMAND} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
file(READ "${EXPECTED}" expected)
if(NOT output STREQUAL expected)
    message(FATAL_ERROR "${COMMAND} does not print ${EXPECTED} but:\n${output}")
endif()
