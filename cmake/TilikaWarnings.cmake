# Our own code builds clean under strict warnings; third-party headers come in
# as system includes and are not held to this.
function(tilika_strict_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Werror)
endfunction()
