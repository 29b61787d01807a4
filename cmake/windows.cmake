# Windows targets (mingw-w64 cross build): the game executable, linked statically so that it
# needs no DLL beyond those of Windows itself.
if(KALVERO_WIN32_SOURCES AND EXISTS ${PROJECT_SOURCE_DIR}/src/resources/kalvero4.rc)
  enable_language(RC)
  add_executable(kalvero4 WIN32 ${KALVERO_WIN32_SOURCES} ${PROJECT_SOURCE_DIR}/src/resources/kalvero4.rc)
  target_link_libraries(kalvero4 PRIVATE kalvero_core gdi32 user32)
  target_link_options(kalvero4 PRIVATE -static -static-libgcc -static-libstdc++ -mwindows)
  target_include_directories(kalvero4 PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/src/resources)
  kalvero_warnings(kalvero4)
endif()
