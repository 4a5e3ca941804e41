# Warnings are errors for our own targets; third-party code (GoogleTest) keeps its own flags.
function(tivora_warnings target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Wcast-align
    -Wconversion -Wsign-conversion -Wformat=2 -Wundef -Werror)
endfunction()
