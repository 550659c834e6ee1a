# Cross-compiling for Windows with mingw-w64 (posix thread model: std::mutex
# for GoogleTest). The per-architecture files set QZ_ARCH and include this.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR ${QZ_ARCH})
set(QZ_TRIPLE ${QZ_ARCH}-w64-mingw32)
set(CMAKE_C_COMPILER ${QZ_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${QZ_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${QZ_TRIPLE}-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${QZ_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
# Test programs run under Wine.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../tools/wine-run.sh)
