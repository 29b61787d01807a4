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

foreach(target IN ITEMS i686 x86_64)
  set(windres_name ${target}-w64-mingw32-windres)
  find_program(KALVERO_WINDRES_${target} NAMES ${windres_name})
  set(windres ${KALVERO_WINDRES_${target}})
  if(NOT windres)
    # Named as is, so that the check reports the missing compiler by name and fails.
    set(windres ${windres_name})
  endif()
  add_test(NAME resources_complete_${target}
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/check_resources.py
      --windres ${windres}
      --rc ${PROJECT_SOURCE_DIR}/src/resources/kalvero4.rc
      --work ${CMAKE_CURRENT_BINARY_DIR}/resources_${target})
  set_tests_properties(resources_complete_${target} PROPERTIES TIMEOUT 120)
endforeach()

add_test(NAME resources_pictures_up_to_date
  COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/make_pictures.py --check
    --out ${PROJECT_SOURCE_DIR}/src/resources/pictures)
set_tests_properties(resources_pictures_up_to_date PROPERTIES TIMEOUT 120)
