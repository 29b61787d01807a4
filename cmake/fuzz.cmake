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
endif()
