# Bad input never harms: the fuzz corpus replayed through the fuzz targets' own cases, and the
# soak run (a short one here, 10,000 games with tools/soak), on the driver's headless platform.
add_executable(kalvero_corpus_tests ${CMAKE_CURRENT_SOURCE_DIR}/corpus_replay.cpp)
target_link_libraries(kalvero_corpus_tests PRIVATE kalvero_fuzz_cases GTest::gtest GTest::gtest_main)
target_compile_definitions(kalvero_corpus_tests PRIVATE KALVERO_FUZZ_CORPUS="${PROJECT_SOURCE_DIR}/fuzz/corpus")
kalvero_warnings(kalvero_corpus_tests)
gtest_discover_tests(kalvero_corpus_tests DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 600)
add_executable(kalvero4-soak ${CMAKE_CURRENT_SOURCE_DIR}/soak.cpp)
target_link_libraries(kalvero4-soak PRIVATE kalvero_fuzz_cases)
kalvero_warnings(kalvero4-soak)
add_test(NAME soak.short COMMAND kalvero4-soak 300)
set_tests_properties(soak.short PROPERTIES TIMEOUT 300)

# The corpus's seeds and the transcripts' scripts are committed as their generators write them.
find_package(Python3 REQUIRED COMPONENTS Interpreter)
foreach(generator corpus transcripts)
  add_test(NAME ${generator}_up_to_date
           COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/tools/make_${generator}.py --check)
endforeach()
