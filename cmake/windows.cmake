# Windows targets (mingw-w64 cross build): the game executable, linked statically so that it
# needs no DLL beyond those of Windows itself.
if(KALVERO_WIN32_SOURCES AND EXISTS ${PROJECT_SOURCE_DIR}/src/resources/kalvero4.rc)
  enable_language(RC)
  set(KALVERO_RC ${PROJECT_SOURCE_DIR}/src/resources/kalvero4.rc)
  # The build does not see the files the script includes: a redrawn picture must still compile
  # the script again.
  file(GLOB KALVERO_PICTURES CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/resources/pictures/*)
  set_source_files_properties(${KALVERO_RC} PROPERTIES OBJECT_DEPENDS "${KALVERO_PICTURES}")

  add_executable(kalvero4 WIN32 ${KALVERO_WIN32_SOURCES} ${KALVERO_RC})
  target_link_libraries(kalvero4 PRIVATE kalvero_core gdi32 user32)
  target_link_options(kalvero4 PRIVATE -static -static-libgcc -static-libstdc++ -mwindows)
  # Drops the sections nothing refers to: the compiler's version strings of every object, unused
  # data, and on x86_64 some code of the C runtime (about 2.5 KB on i686, 5 KB on x86_64).
  # Compiling with -ffunction-sections would add nothing: the linker script keeps every
  # .eh_frame (i686) and .pdata (x86_64) section, and those refer to every function, so no
  # function can be dropped. -fdata-sections would even move the zeroed globals out of .bss
  # into the file (about 280 KB), since the script's .bss takes no .bss$ input sections.
  target_link_options(kalvero4 PRIVATE -Wl,--gc-sections)
  target_include_directories(kalvero4 PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/src/resources)
  target_compile_definitions(kalvero4 PRIVATE
    KALVERO_VERSION_MAJOR=${PROJECT_VERSION_MAJOR}
    KALVERO_VERSION_MINOR=${PROJECT_VERSION_MINOR}
    KALVERO_VERSION_PATCH=${PROJECT_VERSION_PATCH})
  kalvero_warnings(kalvero4)
endif()

# The end-to-end tests' look at the windows of a Wine desktop, and their launcher of the game:
# a console program of its own, not part of the game and not shipped with it, so built only
# when asked for (--target kalvero4-probe).
add_executable(kalvero4-probe EXCLUDE_FROM_ALL ${PROJECT_SOURCE_DIR}/tests/e2e/probe_win32.cpp)
target_link_libraries(kalvero4-probe PRIVATE user32)
target_link_options(kalvero4-probe PRIVATE -static -static-libgcc -static-libstdc++)
kalvero_warnings(kalvero4-probe)

# Times repaints of the game's window from another program (bench/README.md). Built only when
# asked for: cmake --build --preset windows64 --target kalvero4-repaint-probe
add_executable(kalvero4-repaint-probe EXCLUDE_FROM_ALL
  ${PROJECT_SOURCE_DIR}/bench/repaint_probe_win32.cpp)
target_link_libraries(kalvero4-repaint-probe PRIVATE user32)
target_link_options(kalvero4-repaint-probe PRIVATE -static -static-libgcc -static-libstdc++)
kalvero_warnings(kalvero4-repaint-probe)

# The aspect fit computed by this build, compared with the host's table (tests/fit_cases.h);
# tools/test runs it under 32-bit Wine. A console program for the tests only: built on demand
# (cmake --build --preset windows --target kalvero4-fit-check), never shipped.
add_executable(kalvero4-fit-check EXCLUDE_FROM_ALL ${PROJECT_SOURCE_DIR}/tests/fit_check.cpp)
target_link_libraries(kalvero4-fit-check PRIVATE kalvero_core)
target_include_directories(kalvero4-fit-check PRIVATE ${PROJECT_SOURCE_DIR}/tests)
target_link_options(kalvero4-fit-check PRIVATE -static -static-libgcc -static-libstdc++)
kalvero_warnings(kalvero4-fit-check)
