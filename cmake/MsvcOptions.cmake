# The counterparts of GCC's options for Visual C++.
set(VNDISCOVER_WARNINGS /W4)
# The C and C++ runtimes are linked statically, as with mingw: an installer cannot rely on finding them.
set(CMAKE_MSVC_RUNTIME_LIBRARY "MultiThreaded$<$<CONFIG:Debug>:Debug>")
# The sources are UTF-8; /permissive- selects standard C++; /Brepro leaves out link times.
add_compile_options(/utf-8 /permissive- /Zc:__cplusplus /EHsc /Zi)
add_link_options(/Brepro /DEBUG /OPT:REF /OPT:ICF)
target_compile_definitions(vndiscover_options INTERFACE _WIN32_WINNT=0x0601)
# inet_addr, gethostbyname and fopen are called deliberately. Without NOMINMAX, windows.h defines macros min and max.
add_compile_definitions(_WINSOCK_DEPRECATED_NO_WARNINGS _CRT_SECURE_NO_WARNINGS NOMINMAX)
