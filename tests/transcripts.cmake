# Recorded game transcripts: scripts for the driver with the output they must print.
file(GLOB KALVERO_TRANSCRIPTS CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/transcripts/*.script)
foreach(script IN LISTS KALVERO_TRANSCRIPTS)
  get_filename_component(name ${script} NAME_WE)
  add_test(NAME transcript.${name}
           COMMAND ${CMAKE_COMMAND} -DCLI=$<TARGET_FILE:kalvero4-cli> -DSCRIPT=${script}
                   -DEXPECTED=${CMAKE_CURRENT_SOURCE_DIR}/transcripts/${name}.expected
                   -DWORKDIR=${CMAKE_CURRENT_BINARY_DIR}/transcripts/${name}
                   -P ${CMAKE_CURRENT_SOURCE_DIR}/transcripts/run_transcript.cmake)
endforeach()
