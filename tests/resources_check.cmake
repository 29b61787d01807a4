# The committed pictures must be what tools/make_pictures.py draws. (The resources linked into
# the Windows executables are checked by tests/check_resources.py, which tools/test runs on
# them after the cross builds.)

find_package(Python3 COMPONENTS Interpreter)

if(NOT Python3_Interpreter_FOUND)
  message(WARNING "python3 not found: the picture check will fail")
  add_test(NAME resources_need_python3 COMMAND ${CMAKE_COMMAND} -E false)
  return()
endif()

add_test(NAME resources_pictures_up_to_date
  COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/make_pictures.py --check
    --out ${PROJECT_SOURCE_DIR}/src/resources/pictures)
set_tests_properties(resources_pictures_up_to_date PROPERTIES TIMEOUT 120)
