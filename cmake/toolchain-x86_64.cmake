# Cross-compiling for x86_64 Windows.
set(QZ_ARCH x86_64)
include(${CMAKE_CURRENT_LIST_DIR}/toolchain-mingw.cmake)
