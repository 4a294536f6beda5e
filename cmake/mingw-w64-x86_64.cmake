# Cross-compiles for 64-bit Windows with Debian's mingw-w64 (g++-mingw-w64-x86-64).
# The POSIX-thread variant of the compiler is preferred: its libstdc++ has std::thread and
# std::mutex. Programs are linked statically (libstdc++, libgcc, winpthread), so a built .exe runs
# on its own, on Windows or under Wine, without DLLs beside it.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(TM_MINGW_TRIPLE x86_64-w64-mingw32)
find_program(CMAKE_C_COMPILER NAMES ${TM_MINGW_TRIPLE}-gcc-posix ${TM_MINGW_TRIPLE}-gcc REQUIRED)
find_program(CMAKE_CXX_COMPILER NAMES ${TM_MINGW_TRIPLE}-g++-posix ${TM_MINGW_TRIPLE}-g++ REQUIRED)
find_program(CMAKE_RC_COMPILER NAMES ${TM_MINGW_TRIPLE}-windres)

# Libraries and headers come from the cross sysroot only; build tools from the host.
set(CMAKE_FIND_ROOT_PATH /usr/${TM_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
