# Recorded game transcripts: scripts for the driver with the output they must print.
# The driver's command line: the native program, or (web build) the WebAssembly one under Node.
if(NOT DEFINED KALVERO_CLI_COMMAND)
  set(KALVERO_CLI_COMMAND $<TARGET_FILE:kalvero4-cli>)
endif()
file(GLOB KALVERO_TRANSCRIPTS CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/transcripts/*.script)
foreach(script IN LISTS KALVERO_TRANSCRIPTS)
  get_filename_component(name ${script} NAME_WE)
  add_test(NAME transcript.${name}
           COMMAND ${CMAKE_COMMAND} "-DCLI=${KALVERO_CLI_COMMAND}" -DSCRIPT=${script}
                   -DEXPECTED=${CMAKE_CURRENT_LIST_DIR}/transcripts/${name}.expected
                   -DWORKDIR=${CMAKE_CURRENT_BINARY_DIR}/transcripts/${name}
                   -P ${CMAKE_CURRENT_LIST_DIR}/transcripts/run_transcript.cmake)
endforeach()
