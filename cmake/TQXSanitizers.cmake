# Sanitizers and fuzzer coverage: all code of the build or none, libraries included.

set(TQX_SANITIZE "" CACHE STRING "Sanitizers of the whole build, such as address,undefined")

if(TQX_SANITIZE)
    # An error that is only printed would leave the tests green.
    set(flags "-fsanitize=${TQX_SANITIZE}" -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_compile_options(${flags})
    add_link_options(${flags})
endif()

if(TQX_BUILD_FUZZERS)
    if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        message(FATAL_ERROR "TQX_BUILD_FUZZERS needs clang")
    endif()
    add_compile_options(-fsanitize=fuzzer-no-link)
    if(NOT TQX_SANITIZE)
        # Brings the definitions that instrumented code calls for into every program.
        add_link_options(-fsanitize=fuzzer-no-link)
    endif()
endif()
