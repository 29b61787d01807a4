# Plays one recorded transcript through the driver and compares what it prints with the
# recording. Arguments: CLI, SCRIPT, EXPECTED, WORKDIR.
file(MAKE_DIRECTORY ${WORKDIR})
execute_process(COMMAND ${CLI} INPUT_FILE ${SCRIPT} OUTPUT_VARIABLE actual ERROR_VARIABLE errors
                RESULT_VARIABLE status WORKING_DIRECTORY ${WORKDIR})
if(NOT status EQUAL 0)
  message(FATAL_ERROR "the driver stopped with status ${status}: ${errors}")
endif()
file(READ ${EXPECTED} expected)
if(NOT actual STREQUAL expected)
  file(WRITE ${WORKDIR}/actual.txt "${actual}")
  message(FATAL_ERROR "output differs from ${EXPECTED}; what the driver printed is in "
                      "${WORKDIR}/actual.txt (tools/record-transcripts records it anew)")
endif()
