# mifreader_target_warnings(TARGET): the project's warnings, all of them errors. Signs are left out, so that -Wconversion
# is the same with g++ and clang.
function(mifreader_target_warnings target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wconversion -Wno-sign-conversion -Wshadow -Werror)
endfunction()
