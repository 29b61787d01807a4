# Checks of the Windows resources, run on the host: the resource script is compiled by each
# mingw-w64 resource compiler (the 32-bit release's and the 64-bit build's) and every resource
# the program loads is checked in the result; the committed pictures must be what
# tools/make_pictures.py draws. A missing compiler fails its test: tools/setup installs it.

find_package(Python3 COMPONENTS Interpreter)

if(NOT Python3_Interpreter_FOUND)
  message(WARNING "python3 not found: the resource checks will fail")
  add_test(NAME resources_need_python3 COMMAND ${CMAKE_COMMAND} -E false)
  return()
endif()

set(KALVERO_RC ${PROJECT_SOURCE_DIR}/src/resources/kalvero4.rc)
set(KALVERO_RC_CHECK ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/check_resources.py)

foreach(rc_target IN ITEMS i686 x86_64)
  find_program(KALVERO_WINDRES_${rc_target} NAMES ${rc_target}-w64-mingw32-windres)
  set(rc_windres ${KALVERO_WINDRES_${rc_target}})
  if(NOT rc_windres)
    # Named as is, so that the check reports the missing compiler by name and fails.
    set(rc_windres ${rc_target}-w64-mingw32-windres)
  endif()
  set(KALVERO_WINDRES_FOR_${rc_target} ${rc_windres})
  add_test(NAME resources_complete_${rc_target}
    COMMAND ${KALVERO_RC_CHECK} --windres ${rc_windres} --rc ${KALVERO_RC}
      --work ${CMAKE_CURRENT_BINARY_DIR}/resources_${rc_target})
  set_tests_properties(resources_complete_${rc_target} PROPERTIES TIMEOUT 120)
endforeach()

# The checks themselves: faults put into copies of the script must each be reported.
add_test(NAME resources_check_finds_faults
  COMMAND ${KALVERO_RC_CHECK} --self-test --windres ${KALVERO_WINDRES_FOR_x86_64}
    --rc ${KALVERO_RC} --work ${CMAKE_CURRENT_BINARY_DIR}/resources_faults)
set_tests_properties(resources_check_finds_faults PROPERTIES TIMEOUT 120)

add_test(NAME resources_pictures_up_to_date
  COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/make_pictures.py --check
    --out ${PROJECT_SOURCE_DIR}/src/resources/pictures)
set_tests_properties(resources_pictures_up_to_date PROPERTIES TIMEOUT 120)
