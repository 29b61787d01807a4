# Warnings, all treated as errors, for every target of the project.
function(kalvero_warnings target)
  target_compile_options(${target} PRIVATE
    -Wall            # the common set
    -Wextra          # unused parameters, sign comparisons and more
    -Wshadow         # a local that hides another name is a bug waiting
    -Wnon-virtual-dtor
    -Wcast-align
    -Wunused
    -Woverloaded-virtual
    -Wnull-dereference
    -Wimplicit-fallthrough
    -Werror)         # a warning stops the build
endfunction()
