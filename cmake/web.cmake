# The web edition (Emscripten): the game as a static site in build/web/site, and the headless
# driver as WebAssembly under Node, which plays the recorded transcripts as a test.

# Debian's emcc runs its tools with Node and needs Node to find Debian's own modules, also when
# another Node comes first on the PATH: every compile and link of this build runs with it, not
# only those started through the presets.
set(ENV{NODE_PATH} /usr/share/nodejs)
set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env NODE_PATH=/usr/share/nodejs)
set(CMAKE_CXX_LINKER_LAUNCHER ${CMAKE_COMMAND} -E env NODE_PATH=/usr/share/nodejs)
set_target_properties(kalvero_core PROPERTIES CXX_COMPILER_LAUNCHER "${CMAKE_CXX_COMPILER_LAUNCHER}")
set(KALVERO_SITE ${CMAKE_BINARY_DIR}/site)
set(KALVERO_PAGE ${PROJECT_SOURCE_DIR}/web)
# The page's rooms, in the order they are joined (web/page.js maps them).
set(KALVERO_PAGE_ROOMS page texts queue painting frame menus input boxes dialogs speech storage
    tabs offline download start)
find_package(Python3 REQUIRED COMPONENTS Interpreter)

# The bitmaps in one PNG, and where each lies in it: a script made at build time, joined right
# after page.js (tools/make_site_pictures.py).
file(GLOB KALVERO_BITMAPS CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/resources/pictures/*.bmp)
set(KALVERO_PICTURE_MAP ${CMAKE_BINARY_DIR}/picture_map.js)
add_custom_command(OUTPUT ${KALVERO_SITE}/pictures/bitmaps.png ${KALVERO_PICTURE_MAP}
                   COMMAND ${CMAKE_COMMAND} -E make_directory ${KALVERO_SITE}/pictures
                   COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/make_site_pictures.py
                           atlas ${PROJECT_SOURCE_DIR}/src/resources/pictures
                           ${KALVERO_SITE}/pictures/bitmaps.png pictures/bitmaps.png
                           ${KALVERO_PICTURE_MAP}
                   DEPENDS ${PROJECT_SOURCE_DIR}/tools/make_site_pictures.py ${KALVERO_BITMAPS})
add_custom_target(picture-map DEPENDS ${KALVERO_PICTURE_MAP})

set(KALVERO_PAGE_SCRIPTS)
set(KALVERO_PAGE_PRE_JS)
foreach(room IN LISTS KALVERO_PAGE_ROOMS)
  list(APPEND KALVERO_PAGE_SCRIPTS ${KALVERO_PAGE}/${room}.js)
  # SHELL: keeps each --pre-js with its file; CMake would fold repeated options into one.
  list(APPEND KALVERO_PAGE_PRE_JS "SHELL:--pre-js ${KALVERO_PAGE}/${room}.js")
  if(room STREQUAL "page")
    list(APPEND KALVERO_PAGE_SCRIPTS ${KALVERO_PICTURE_MAP})
    list(APPEND KALVERO_PAGE_PRE_JS "SHELL:--pre-js ${KALVERO_PICTURE_MAP}")
  endif()
endforeach()

file(GLOB KALVERO_WEB_SOURCES CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/web/*.cpp)
add_executable(kalvero4 ${KALVERO_WEB_SOURCES})
target_link_libraries(kalvero4 PRIVATE kalvero_core)
kalvero_warnings(kalvero4)
set_target_properties(kalvero4 PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${KALVERO_SITE} SUFFIX ".js")
set(KALVERO_ASYNC_IMPORTS "['kv_ask','kv_dialog_wait']")
# How the core's code is compiled into the page; the reply's timing program below uses the same.
set(KALVERO_WEB_CODE_OPTIONS
  -sENVIRONMENT=web
  -sASYNCIFY                                  # a dialog or a box waits inside the core's call
  "-sASYNCIFY_IMPORTS=${KALVERO_ASYNC_IMPORTS}"
  -sALLOW_MEMORY_GROWTH                       # the engine takes its memory at every game
  -sMALLOC=emmalloc)                          # 6 KB less to download than dlmalloc
target_link_options(kalvero4 PRIVATE
  ${KALVERO_WEB_CODE_OPTIONS}
  -sEXIT_RUNTIME=0
  -sINVOKE_RUN=0                              # the page starts the game once storage is read
  -sFORCE_FILESYSTEM
  -lidbfs.js
  "-sEXPORTED_RUNTIME_METHODS=['ccall','FS']"
  --js-library ${KALVERO_PAGE}/library.js
  ${KALVERO_PAGE_PRE_JS})
set_property(TARGET kalvero4 APPEND PROPERTY LINK_DEPENDS
             ${KALVERO_PAGE}/library.js ${KALVERO_PAGE_SCRIPTS})
add_dependencies(kalvero4 picture-map)
# The program smaller for the network (tools/finish_program.py): the JavaScript through Terser
# into kalvero4-program.js, both it and the WebAssembly also compressed, and kalvero4.js the
# loader that fetches the compressed program (web/loader.js).
add_custom_command(TARGET kalvero4 POST_BUILD
                   COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/finish_program.py
                           ${KALVERO_SITE}/kalvero4.js ${KALVERO_SITE}/kalvero4.wasm
                           ${KALVERO_PAGE}/loader.js
                   BYPRODUCTS ${KALVERO_SITE}/kalvero4-program.js
                              ${KALVERO_SITE}/kalvero4-program.js.gz
                              ${KALVERO_SITE}/kalvero4.wasm.gz)
set_property(TARGET kalvero4 APPEND PROPERTY LINK_DEPENDS ${KALVERO_PAGE}/loader.js
             ${PROJECT_SOURCE_DIR}/tools/finish_program.py)

# The page, its app manifest and the pictures it draws, beside the program: the bitmaps in one
# PNG (above), the icons as they are (browsers read them), and the installed app's icons
# enlarged from the program's icon. KALVERO_SITE_NAMES lists every file of the site that the
# service worker keeps: all but the compressed program, which a page under the worker never asks
# for (it takes the plain files from the store; web/loader.js tells why), and which a server
# that refuses .gz files would otherwise make the worker's whole install fail on.
file(GLOB KALVERO_ICONS CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/resources/pictures/*.ico)
set(KALVERO_SITE_FILES ${KALVERO_SITE}/pictures/bitmaps.png)
set(KALVERO_SITE_NAMES kalvero4.js kalvero4-program.js kalvero4.wasm pictures/bitmaps.png)
foreach(file index.html kalvero4.css manifest.json)
  add_custom_command(OUTPUT ${KALVERO_SITE}/${file}
                     COMMAND ${CMAKE_COMMAND} -E copy ${KALVERO_PAGE}/${file} ${KALVERO_SITE}/${file}
                     DEPENDS ${KALVERO_PAGE}/${file})
  list(APPEND KALVERO_SITE_FILES ${KALVERO_SITE}/${file})
  list(APPEND KALVERO_SITE_NAMES ${file})
endforeach()
foreach(picture IN LISTS KALVERO_ICONS)
  get_filename_component(name ${picture} NAME)
  add_custom_command(OUTPUT ${KALVERO_SITE}/pictures/${name}
                     COMMAND ${CMAKE_COMMAND} -E copy ${picture} ${KALVERO_SITE}/pictures/${name}
                     DEPENDS ${picture})
  list(APPEND KALVERO_SITE_FILES ${KALVERO_SITE}/pictures/${name})
  list(APPEND KALVERO_SITE_NAMES pictures/${name})
endforeach()
set(KALVERO_APP_ICONS icon-192.png icon-512.png icon-maskable.png)
list(TRANSFORM KALVERO_APP_ICONS PREPEND ${KALVERO_SITE}/pictures/
     OUTPUT_VARIABLE KALVERO_APP_ICON_FILES)
add_custom_command(OUTPUT ${KALVERO_APP_ICON_FILES}
                   COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/make_site_pictures.py
                           icons ${PROJECT_SOURCE_DIR}/src/resources/pictures
                           ${KALVERO_SITE}/pictures
                   DEPENDS ${PROJECT_SOURCE_DIR}/tools/make_site_pictures.py
                           ${PROJECT_SOURCE_DIR}/src/resources/pictures/kalvero4.ico
                           ${PROJECT_SOURCE_DIR}/src/resources/pictures/bg148.bmp)
list(APPEND KALVERO_SITE_FILES ${KALVERO_APP_ICON_FILES})
foreach(icon IN LISTS KALVERO_APP_ICONS)
  list(APPEND KALVERO_SITE_NAMES pictures/${icon})
endforeach()
# The menu, accelerators, strings, dialog templates and picture map, from the Windows program's
# own script, with the numbers the page shares with the core, from the core's headers (the
# script names them, and lists every file it read in its depfile).
add_custom_command(OUTPUT ${KALVERO_SITE}/resources.js
                   COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/make_page_resources.py
                           ${PROJECT_SOURCE_DIR}/src ${KALVERO_SITE}/resources.js
                           ${CMAKE_CURRENT_BINARY_DIR}/resources.js.d
                   DEPENDS ${PROJECT_SOURCE_DIR}/tools/make_page_resources.py
                   DEPFILE ${CMAKE_CURRENT_BINARY_DIR}/resources.js.d)
list(APPEND KALVERO_SITE_FILES ${KALVERO_SITE}/resources.js)
list(APPEND KALVERO_SITE_NAMES resources.js)
# The service worker, last: it lists every other file of the site and is named by their hash.
add_custom_command(OUTPUT ${KALVERO_SITE}/service-worker.js
                   COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/make_service_worker.py
                           ${KALVERO_PAGE}/service-worker.js ${KALVERO_SITE}
                           ${KALVERO_SITE}/service-worker.js ${KALVERO_SITE_NAMES}
                   DEPENDS ${PROJECT_SOURCE_DIR}/tools/make_service_worker.py
                           ${KALVERO_PAGE}/service-worker.js ${KALVERO_SITE_FILES} kalvero4)
list(APPEND KALVERO_SITE_FILES ${KALVERO_SITE}/service-worker.js)
add_custom_target(site ALL DEPENDS ${KALVERO_SITE_FILES})

# The reply's timing program (bench/reply_time.cpp) with the page that runs it in a browser,
# beside the site and not in it (build/web/bench), built on request only:
# cmake --build --preset web --target kalvero4-reply-time; bench/web_measure.py reply runs it.
set(KALVERO_BENCH_PAGE ${CMAKE_BINARY_DIR}/bench)
add_executable(kalvero4-reply-time EXCLUDE_FROM_ALL ${PROJECT_SOURCE_DIR}/bench/reply_time.cpp
               ${PROJECT_SOURCE_DIR}/src/cli/platform_cli.cpp)
target_link_libraries(kalvero4-reply-time PRIVATE kalvero_core)
kalvero_warnings(kalvero4-reply-time)
set_target_properties(kalvero4-reply-time PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${KALVERO_BENCH_PAGE}
                      SUFFIX ".js")
target_link_options(kalvero4-reply-time PRIVATE ${KALVERO_WEB_CODE_OPTIONS})
add_custom_command(OUTPUT ${KALVERO_BENCH_PAGE}/reply_time.html
                   COMMAND ${CMAKE_COMMAND} -E copy ${PROJECT_SOURCE_DIR}/bench/reply_time.html
                           ${KALVERO_BENCH_PAGE}/reply_time.html
                   DEPENDS ${PROJECT_SOURCE_DIR}/bench/reply_time.html)
add_custom_target(reply-time-page DEPENDS ${KALVERO_BENCH_PAGE}/reply_time.html)
add_dependencies(kalvero4-reply-time reply-time-page)

# The driver under Node, reading its script from standard input and its files from the disk.
file(GLOB KALVERO_DRIVER_SOURCES CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/cli/*.cpp)
add_executable(kalvero4-cli ${KALVERO_DRIVER_SOURCES})
target_link_libraries(kalvero4-cli PRIVATE kalvero_core)
kalvero_warnings(kalvero4-cli)
set_target_properties(kalvero4-cli PROPERTIES SUFFIX ".js")
target_link_options(kalvero4-cli PRIVATE -sENVIRONMENT=node -sNODERAWFS -sEXIT_RUNTIME
                    -sALLOW_MEMORY_GROWTH)

enable_testing()
find_program(KALVERO_NODE node REQUIRED)
# Node 18 and later would fetch the program with its own fetch(), which this Emscripten's
# output does not expect.
set(KALVERO_CLI_COMMAND "${KALVERO_NODE};--no-experimental-fetch;$<TARGET_FILE:kalvero4-cli>")
include(${PROJECT_SOURCE_DIR}/tests/transcripts.cmake)
