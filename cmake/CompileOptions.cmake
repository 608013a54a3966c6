# How our own code is compiled and linked. Third-party targets do not use `vndiscover_options`.
add_library(vndiscover_options INTERFACE)
set(VNDISCOVER_WARNINGS -Wall -Wextra -Werror)
if(MSVC)
    include(MsvcOptions)
endif()
target_compile_options(vndiscover_options INTERFACE ${VNDISCOVER_WARNINGS})
target_include_directories(vndiscover_options INTERFACE ${PROJECT_SOURCE_DIR}/src
                                                        ${PROJECT_SOURCE_DIR}/include)

# vndiscover_has_manifest(TARGET): for a program whose resources hold a manifest. Otherwise Visual C++'s linker embeds a
# second one with the same number and then fails (CVT1100, LNK1123).
function(vndiscover_has_manifest target)
    if(MSVC)
        target_link_options(${target} PRIVATE /MANIFEST:NO)
    endif()
endfunction()

# A commit gives the same bytes in every folder: no absolute paths, no link times. A debugger needs the paths.
if(NOT MSVC AND NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
    add_compile_options(-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.
                        -ffile-prefix-map=${PROJECT_BINARY_DIR}=build)
endif()

if(MINGW)
    # Windows 7: the oldest system that has every API which is linked rather than loaded at run time.
    target_compile_definitions(vndiscover_options INTERFACE _WIN32_WINNT=0x0601)
    add_link_options(-static -Wl,--no-insert-timestamp)
endif()

if(VNDISCOVER_SANITIZE STREQUAL "trap")
    # GCC warns about paths that exist only because of the checks it inserts.
    add_compile_options(-fsanitize=undefined -fsanitize-undefined-trap-on-error
                        -Wno-maybe-uninitialized -Wno-stringop-overflow -Wno-array-bounds)
elseif(VNDISCOVER_SANITIZE STREQUAL "address")
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all
                        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
elseif(VNDISCOVER_SANITIZE)
    message(FATAL_ERROR "VNDISCOVER_SANITIZE is '${VNDISCOVER_SANITIZE}', not 'trap' or 'address'")
endif()
