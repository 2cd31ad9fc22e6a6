# Cross-compiles the Windows backend with mingw-w64 on a Linux host and runs its tests under Wine.
# Only the -posix compilers are usable: the win32-threads variant lacks std::thread and std::mutex.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(_varnel_mingw x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${_varnel_mingw}-gcc-posix)
set(CMAKE_CXX_COMPILER ${_varnel_mingw}-g++-posix)
set(CMAKE_RC_COMPILER ${_varnel_mingw}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${_varnel_mingw})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
# Qt's CMake packages live in their own prefix, outside the mingw sysroot.
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)

# A static runtime means the backend's test programs need no MinGW DLLs copied next to them
# under Wine. Built against Qt, whose DLLs need the shared runtime anyway, the program shares it.
if(NOT VARNEL_SHARED_RUNTIME)
    set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
endif()

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine-run.sh)
