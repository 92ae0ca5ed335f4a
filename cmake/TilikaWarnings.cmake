# Our own code builds clean under strict warnings; third-party headers come in
# as system includes and are not held to this.
#
# Warnings only fail the build where we choose so (the default preset, which CI
# and ./tilika.sh use): a distribution's flags or a newer compiler find new
# warnings, and those must never stop a user from building the program.
option(TILIKA_WERROR "Treat compiler warnings in our own code as errors" OFF)

function(tilika_strict_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic)
    if(TILIKA_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
        # GCC 12 at -O3 sees an overlapping copy in std::string's assignment
        # from a short literal, where there is none (its bug 105329); it
        # stays a warning, so an optimised build is not stopped by it.
        if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
            target_compile_options(${target} PRIVATE -Wno-error=restrict)
        endif()
    endif()
endfunction()
