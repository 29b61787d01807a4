# Bad input never harms: the fuzz corpus replayed through the fuzz targets' own cases, and the
# soak run. Both use the driver's headless platform, so they are programs of their own.
add_executable(kalvero_corpus_tests ${CMAKE_CURRENT_SOURCE_DIR}/corpus_replay.cpp)
target_link_libraries(kalvero_corpus_tests PRIVATE kalvero_fuzz_cases GTest::gtest GTest::gtest_main)
target_compile_definitions(kalvero_corpus_tests PRIVATE KALVERO_FUZZ_CORPUS="${PROJECT_SOURCE_DIR}/fuzz/corpus")
kalvero_warnings(kalvero_corpus_tests)
gtest_discover_tests(kalvero_corpus_tests DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 600)

# Random games: a short run with the tests, 10,000 games with tools/soak.
add_executable(kalvero4-soak ${CMAKE_CURRENT_SOURCE_DIR}/soak.cpp)
target_link_libraries(kalvero4-soak PRIVATE kalvero_fuzz_cases)
kalvero_warnings(kalvero4-soak)
add_test(NAME soak.short COMMAND kalvero4-soak 300)
set_tests_properties(soak.short PROPERTIES TIMEOUT 300)

# The corpus's seeds are committed as tools/make_corpus.py writes them.
find_package(Python3 REQUIRED COMPONENTS Interpreter)
add_test(NAME fuzz_seeds_up_to_date
         COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/tools/make_corpus.py --check)
