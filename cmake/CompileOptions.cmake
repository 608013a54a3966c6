# How our own code is compiled and linked. Third-party targets do not use `vndiscover_options`.
add_library(vndiscover_options INTERFACE)
set(VNDISCOVER_WARNINGS -Wall -Wextra -Werror)
if(MSVC)
    include(MsvcOptions)
endif()
target_compile_options(vndiscover_options INTERFACE ${VNDISCOVER_WARNINGS})
target_include_directories(vndiscover_options INTERFACE ${PROJECT_SOURCE_DIR}/src
                                                        ${PROJECT_SOURCE_DIR}/include)

# vndiscover_version(TARGET DESCRIPTION [RESOURCES]): a version resource, beside other lines of resources.
function(vndiscover_version target description)
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "SHARED_LIBRARY")
        set(file_type VFT_DLL)
        set(suffix .dll)
    else()
        set(file_type VFT_APP)
        set(suffix .exe)
    endif()
    get_target_property(internal_name ${target} OUTPUT_NAME)
    if(NOT internal_name)
        set(internal_name ${target})
    endif()
    set(file_name ${internal_name}${suffix})
    string(JOIN "\n" more ${ARGN} "")
    set(resource ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/program/version.rc.in ${resource} @ONLY)
    target_sources(${target} PRIVATE ${resource})
endfunction()

# vndiscover_program(TARGET DESCRIPTION): version, icon and manifest of a program. Windows shows the description when the
# firewall asks about the program.
function(vndiscover_program target description)
    set(folder ${PROJECT_SOURCE_DIR}/cmake/program)
    vndiscover_version(${target} "${description}" "1 ICON \"${folder}/program.ico\"" "1 24 \"${folder}/program.manifest\"")
    set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/${target}.rc PROPERTIES
        OBJECT_DEPENDS "${folder}/program.ico;${folder}/program.manifest")
    # Otherwise Visual C++'s linker embeds a second manifest with the same number and then fails (CVT1100, LNK1123).
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
