include_guard()

# tqx_discover_tests(TARGET [PREFIX text] [WHOLE suite...])
# A test of CTest per test of TARGET, but one in all for a suite that goes over all types: a process
# for each of them costs more than what it does.
function(tqx_discover_tests target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "PREFIX" "WHOLE")
    list(TRANSFORM arg_WHOLE APPEND ".*" OUTPUT_VARIABLE patterns)
    list(JOIN patterns ":" whole)
    gtest_discover_tests(${target} TEST_PREFIX "${arg_PREFIX}" TEST_FILTER "-${whole}")
    foreach(suite IN LISTS arg_WHOLE)
        add_test(NAME "${arg_PREFIX}${suite}" COMMAND ${target} "--gtest_filter=${suite}.*")
        set_tests_properties("${arg_PREFIX}${suite}" PROPERTIES
            FAIL_REGULAR_EXPRESSION "Running 0 tests")
    endforeach()
endfunction()
