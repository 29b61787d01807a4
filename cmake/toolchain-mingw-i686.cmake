# Cross build of the 32-bit Windows release with mingw-w64.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER i686-w64-mingw32-gcc)
set(CMAKE_CXX_COMPILER i686-w64-mingw32-g++)
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)
set(CMAKE_FIND_ROOT_PATH /usr/i686-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)

# Floating point in SSE registers, as on x86_64, instead of the x87 stack. The x87 keeps every
# intermediate value in 80 bits and g++ does not round it when C++ code asks for a float or a
# double, so the 32-bit build would skip roundings that are part of the game's rules (the
# aspect fit rounds its ratio to single precision: tests/fit_check.cpp checks this build for
# it). SSE2 is on every x86 processor of this century and required by Windows since 8;
# mingw-w64 realigns the stack for it in functions that Windows calls back.
set(CMAKE_C_FLAGS_INIT "-msse2 -mfpmath=sse")
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse")
