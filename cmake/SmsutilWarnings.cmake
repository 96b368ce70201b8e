# Warnings are errors for everything the project compiles.
function(smsutil_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Werror)
endfunction()
