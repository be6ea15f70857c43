# Builds for Windows (64 bits) with Debian's MinGW. The libraries come from the folder QUENDLE_WINDOWS_DEPS, which
# packaging/windows/dependencies.sh fills.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

if(NOT QUENDLE_WINDOWS_DEPS)
  if(DEFINED ENV{QUENDLE_WINDOWS_DEPS})
    set(QUENDLE_WINDOWS_DEPS $ENV{QUENDLE_WINDOWS_DEPS})
  else()
    set(QUENDLE_WINDOWS_DEPS $ENV{HOME}/.cache/quendle/windows)
  endif()
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QUENDLE_WINDOWS_DEPS)

set(CMAKE_FIND_ROOT_PATH ${QUENDLE_WINDOWS_DEPS} /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} ${QUENDLE_WINDOWS_DEPS}/lib/pkgconfig)
set(ENV{PKG_CONFIG_PATH} "")

# Debian's Qt has the tools that run while building.
set(QT_HOST_PATH /usr)
set(QT_HOST_PATH_CMAKE_DIR /usr/lib/x86_64-linux-gnu/cmake)

# The libraries are static: they need what they are linked with themselves.
set(PKG_CONFIG_ARGN --static)

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine-test.sh)
