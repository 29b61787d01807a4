# Host (Linux) targets: the headless driver, the tests and the benchmarks.

# The driver's script interpreter is a library so that the tests and the fuzzers reach it too.
file(GLOB KALVERO_DRIVER_SOURCES CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/cli/*.cpp)
list(FILTER KALVERO_DRIVER_SOURCES EXCLUDE REGEX "/main\\.cpp$")
add_library(kalvero_driver STATIC ${KALVERO_DRIVER_SOURCES})
target_link_libraries(kalvero_driver PUBLIC kalvero_core)
kalvero_warnings(kalvero_driver)

add_executable(kalvero4-cli ${PROJECT_SOURCE_DIR}/src/cli/main.cpp)
target_link_libraries(kalvero4-cli PRIVATE kalvero_driver)
kalvero_warnings(kalvero4-cli)

# The fuzz build holds the fuzz targets only; the tests run in the other host builds.
add_subdirectory(fuzz)
if(NOT KALVERO_FUZZ AND NOT CMAKE_CROSSCOMPILING)
  enable_testing()
  add_subdirectory(tests)
  option(KALVERO_BENCH "Build the benchmarks" ON)
  if(KALVERO_BENCH)
    add_subdirectory(bench)
  endif()
endif()
