# mifreader_target_warnings(TARGET): the project's warnings, all of them errors.
function(mifreader_target_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
endfunction()
