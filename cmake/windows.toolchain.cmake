# Builds for 64-bit Windows on Linux with Debian's mingw-w64, and runs what was built under Wine:
#   cmake --preset windows
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

# The variant with POSIX threads: the tests use std::thread. Its run time is linked into the programs.
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

set(CMAKE_EXE_LINKER_FLAGS_INIT -static)

# Libraries come from the cross compiler's folders; programs that run during the build, and CMake packages that
# are nothing but headers, from this system. An ICU for Windows, where there is one, is a folder of its own.
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 ${ICU_ROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/run-under-wine ${CMAKE_BINARY_DIR}/wine)
