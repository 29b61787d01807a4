# Bad input never harms: the fuzz corpus replayed in the ordinary builds, and the soak run.
set(KALVERO_FUZZ_DIR ${PROJECT_SOURCE_DIR}/fuzz)

# Save files of the corpus, through the same case as the fuzz target, in the main test binary.
target_sources(kalvero_tests PRIVATE ${KALVERO_FUZZ_DIR}/savefile_case.cpp
                                     ${KALVERO_FUZZ_DIR}/invariants.cpp)
target_include_directories(kalvero_tests PRIVATE ${KALVERO_FUZZ_DIR})
target_compile_definitions(kalvero_tests PRIVATE KALVERO_FUZZ_CORPUS="${KALVERO_FUZZ_DIR}/corpus")

# Driver scripts of the corpus need the driver's own platform, so they run in a binary of their
# own rather than beside the fake platform of the main test binary.
add_executable(kalvero_driver_tests ${CMAKE_CURRENT_SOURCE_DIR}/driver_corpus_replay.cpp
                                    ${KALVERO_FUZZ_DIR}/driver_case.cpp
                                    ${KALVERO_FUZZ_DIR}/invariants.cpp)
target_link_libraries(kalvero_driver_tests PRIVATE kalvero_driver GTest::gtest GTest::gtest_main)
target_include_directories(kalvero_driver_tests PRIVATE ${KALVERO_FUZZ_DIR})
target_compile_definitions(kalvero_driver_tests PRIVATE
  KALVERO_FUZZ_CORPUS="${KALVERO_FUZZ_DIR}/corpus")
kalvero_warnings(kalvero_driver_tests)
gtest_discover_tests(kalvero_driver_tests DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 600)

# Random games through the driver: a short run with the tests, 10,000 games with tools/soak.
add_executable(kalvero4-soak ${CMAKE_CURRENT_SOURCE_DIR}/soak.cpp ${KALVERO_FUZZ_DIR}/invariants.cpp)
target_link_libraries(kalvero4-soak PRIVATE kalvero_driver)
target_include_directories(kalvero4-soak PRIVATE ${KALVERO_FUZZ_DIR})
kalvero_warnings(kalvero4-soak)
add_test(NAME soak.short COMMAND kalvero4-soak --games 300 --seed 1)
set_tests_properties(soak.short PROPERTIES TIMEOUT 300)
