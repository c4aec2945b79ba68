# Cross-build for 64-bit Windows with Debian's MinGW-w64 (g++-mingw-w64-x86-64).
# The posix thread model: std::thread and std::mutex need winpthreads, which is linked
# statically with libstdc++ and libgcc so that the plug-in needs no DLL a user lacks.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(MINGW_TRIPLE x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${MINGW_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${MINGW_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${MINGW_TRIPLE}-windres)
set(CMAKE_DLLTOOL ${MINGW_TRIPLE}-dlltool)
set(CMAKE_FIND_ROOT_PATH /usr/${MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# Run the Windows programs of the build (tests) with Wine.
set(CMAKE_CROSSCOMPILING_EMULATOR /usr/lib/wine/wine64)
