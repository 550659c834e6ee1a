# Cross-compiling for i686 Windows.
set(QZ_ARCH i686)
include(${CMAKE_CURRENT_LIST_DIR}/toolchain-mingw.cmake)
