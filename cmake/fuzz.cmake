# The "fuzz" preset: the whole build with clang's coverage instrumentation for libFuzzer, under
# AddressSanitizer and UndefinedBehaviorSanitizer. Only the fuzz targets link the fuzzer itself.
option(KALVERO_FUZZ "Build the libFuzzer targets (clang only)" OFF)
if(KALVERO_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "KALVERO_FUZZ needs clang: configure with the fuzz preset")
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
  # clang enables -Wformat-security with -Wall, and it fires inside a printf-style wrapper
  # template called with a literal and no argument; the g++ builds don't check it at all. Here
  # it is reported without stopping the build.
  add_compile_options(-Wno-error=format-security)
endif()
