# The kit for host developers, as installed by `cmake --install` and packed by `cpack`:
#
#   bin/        VnDiscover.dll, vndiscover.exe, VnBrowser.exe, windows_check.exe, stripped, each with its debug
#               symbols in a .debug file
#   include/    vndiscover.h
#   lib/        libVnDiscover.dll.a (mingw), VnDiscover.lib (MSVC), pkgconfig/, cmake/VnDiscover/
#   README.md, CHANGELOG.md, CONTRIBUTING.md, docs/, examples/
#   licenses/   third-party licence texts; THIRD-PARTY-NOTICES.txt lists what is linked where
#   sbom.cdx.json, SHA256SUMS
#
# A commit gives the same bytes: files contain no times and no folders of the build.
include(CMakePackageConfigHelpers)
include(ThirdParty)

option(VNDISCOVER_SYMBOLS "Compile the product with debug symbols; the kit holds them as separate files" OFF)

if(NOT WIN32 OR NOT TARGET VnDiscover)
    return()
endif()

set(_stage ${PROJECT_BINARY_DIR}/kit)
set(_parts ${PROJECT_SOURCE_DIR}/cmake/package)

# ---------------------------------------------------------------- programs and their symbols
# _kit_symbols(LEVEL TARGET...)
function(_kit_symbols level)
    foreach(target IN LISTS ARGN)
        if(TARGET ${target})
            target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:C,CXX>:${level}>)
        endif()
    endforeach()
endfunction()
if(VNDISCOVER_SYMBOLS AND MINGW)
    _kit_symbols(-g vndiscover_core VnDiscover)
    # Functions and lines only: with all symbols of its templates the kit would be ten times as large.
    _kit_symbols(-g1 vndiscover_host_model vndiscover_host_device vndiscover_host_cli vndiscover_host
                 vndiscover_host_window VnBrowser windows_check_core windows_check)
endif()

# _kit_program(TARGET NAME): the stripped program and its symbols in the stage.
function(_kit_program target name)
    set(program ${_stage}/bin/${name})
    add_custom_command(
        OUTPUT ${program} ${program}.debug
        COMMAND ${CMAKE_COMMAND} -E make_directory ${_stage}/bin
        COMMAND ${CMAKE_OBJCOPY} --only-keep-debug $<TARGET_FILE:${target}> ${program}.debug
        COMMAND ${CMAKE_OBJCOPY} --strip-all --add-gnu-debuglink=${program}.debug
                $<TARGET_FILE:${target}> ${program}
        DEPENDS ${target} VERBATIM)
    install(PROGRAMS ${program} DESTINATION bin)
    install(FILES ${program}.debug DESTINATION bin)
    set_property(GLOBAL APPEND PROPERTY VNDISCOVER_KIT_FILES ${program} ${program}.debug)
endfunction()

if(MINGW)
    _kit_program(VnDiscover VnDiscover.dll)
    if(TARGET vndiscover_host)
        _kit_program(vndiscover_host vndiscover.exe)
        _kit_program(VnBrowser VnBrowser.exe)
    endif()
    _kit_program(windows_check windows_check.exe)
else()
    # Visual C++ keeps symbols in separate files anyway.
    install(TARGETS VnDiscover RUNTIME DESTINATION bin)
    install(FILES $<TARGET_PDB_FILE:VnDiscover> DESTINATION bin OPTIONAL)
    if(TARGET vndiscover_host)
        install(TARGETS vndiscover_host VnBrowser RUNTIME DESTINATION bin)
    endif()
    install(TARGETS windows_check RUNTIME DESTINATION bin)
endif()

# ---------------------------------------------------------------- header and import libraries
install(FILES ${PROJECT_SOURCE_DIR}/include/vndiscover.h DESTINATION include)
install(FILES $<TARGET_LINKER_FILE:VnDiscover> DESTINATION lib)

if(MINGW)
    # Visual C++'s linker reads what either tool writes; LLVM's writes that linker's own short form.
    find_program(VNDISCOVER_DLLTOOL NAMES llvm-dlltool llvm-dlltool-14 ${CMAKE_DLLTOOL} REQUIRED)
    set(_def ${PROJECT_SOURCE_DIR}/src/interface/vndiscover.def)
    set(_msvcLib ${_stage}/lib/VnDiscover.lib)
    add_custom_command(
        OUTPUT ${_msvcLib}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${_stage}/lib
        COMMAND ${VNDISCOVER_DLLTOOL} -m i386:x86-64 -d ${_def} -D VnDiscover.dll -l ${_msvcLib}
        DEPENDS ${_def} VERBATIM)
    install(FILES ${_msvcLib} DESTINATION lib)
    set_property(GLOBAL APPEND PROPERTY VNDISCOVER_KIT_FILES ${_msvcLib})
endif()

# ---------------------------------------------------------------- find_package and pkg-config
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/VnDiscoverConfig.cmake.in
    ${_stage}/cmake/VnDiscoverConfig.cmake
    INSTALL_DESTINATION lib/cmake/VnDiscover NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(${_stage}/cmake/VnDiscoverConfigVersion.cmake
    VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${_stage}/cmake/VnDiscoverConfig.cmake ${_stage}/cmake/VnDiscoverConfigVersion.cmake
        DESTINATION lib/cmake/VnDiscover)
configure_file(${_parts}/vndiscover.pc.in ${_stage}/pkgconfig/vndiscover.pc @ONLY)
install(FILES ${_stage}/pkgconfig/vndiscover.pc DESTINATION lib/pkgconfig)

# ---------------------------------------------------------------- documents, notices, bill of materials
install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md ${PROJECT_SOURCE_DIR}/CONTRIBUTING.md DESTINATION .)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/ DESTINATION docs FILES_MATCHING PATTERN "*.md" PATTERN "*.png")
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/ DESTINATION examples)
vndiscover_third_party(${_stage})
if(EXISTS ${_stage}/sbom.cdx.json)
    install(DIRECTORY ${_stage}/licenses/ DESTINATION licenses)
    install(FILES ${_stage}/THIRD-PARTY-NOTICES.txt ${_stage}/sbom.cdx.json DESTINATION .)
endif()
# Last, since it lists what the rules above install.
install(SCRIPT ${_parts}/Checksums.cmake)

get_property(_files GLOBAL PROPERTY VNDISCOVER_KIT_FILES)
add_custom_target(vndiscover_kit ALL DEPENDS ${_files})

# ---------------------------------------------------------------- the ZIP
set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_NAME VnDiscover)
set(CPACK_PACKAGE_VENDOR "Varnell Osk")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_FILE_NAME VnDiscover-${PROJECT_VERSION}-win64)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/package)
set(CPACK_POST_BUILD_SCRIPTS ${_parts}/Normalise.cmake)
include(CPack)
