# Cross toolchain: 64-bit Windows, GCC of mingw-w64 with the posix thread model (std::thread, std::mutex).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(_triple x86_64-w64-mingw32)
find_program(_gxx NAMES ${_triple}-g++-posix ${_triple}-g++ REQUIRED)
find_program(_gcc NAMES ${_triple}-gcc-posix ${_triple}-gcc REQUIRED)
set(CMAKE_C_COMPILER ${_gcc})
set(CMAKE_CXX_COMPILER ${_gxx})
set(CMAKE_RC_COMPILER ${_triple}-windres)

# Headers and libraries of the build machine must not be used for the product.
set(CMAKE_FIND_ROOT_PATH /usr/${_triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
