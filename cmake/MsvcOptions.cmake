# What Visual C++ needs instead of GCC's options.
set(VNDISCOVER_WARNINGS /W4)
# The C and C++ runtimes go into the DLL, as with mingw: an installer cannot count on finding them.
set(CMAKE_MSVC_RUNTIME_LIBRARY "MultiThreaded$<$<CONFIG:Debug>:Debug>")
# The sources are UTF-8; /permissive- is the language of the standard; /Brepro leaves link times out.
add_compile_options(/utf-8 /permissive- /Zc:__cplusplus /EHsc /Zi)
add_link_options(/Brepro /DEBUG /OPT:REF /OPT:ICF)
target_compile_definitions(vndiscover_options INTERFACE _WIN32_WINNT=0x0601)
# inet_addr, gethostbyname and fopen are called on purpose. Its windows.h has macros for min and max in C++ too.
add_compile_definitions(_WINSOCK_DEPRECATED_NO_WARNINGS _CRT_SECURE_NO_WARNINGS NOMINMAX)
