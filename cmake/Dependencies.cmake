# Third-party code: vndiscover::cjson, vndiscover::crypto, vndiscover::pugixml, and for Windows vndiscover::cli11. For
# Windows they are built once by scripts/build-deps.sh into a cache outside the build tree and linked statically; the
# native build uses the system's libraries.
function(_vndiscover_static name archive)
    add_library(vndiscover::${name} STATIC IMPORTED GLOBAL)
    set_target_properties(vndiscover::${name} PROPERTIES
        IMPORTED_LOCATION ${VNDISCOVER_DEPS}/lib/${archive}
        INTERFACE_INCLUDE_DIRECTORIES ${VNDISCOVER_DEPS}/include)
    if(NOT EXISTS ${VNDISCOVER_DEPS}/lib/${archive})
        message(FATAL_ERROR "${VNDISCOVER_DEPS}/lib/${archive} is missing")
    endif()
endfunction()

if(CMAKE_HOST_WIN32)
    include(VcpkgDependencies)
elseif(WIN32)
    set(VNDISCOVER_DEPS "" CACHE PATH "Prefix with the built dependencies; empty: build or reuse them")
    if(NOT VNDISCOVER_DEPS)
        execute_process(COMMAND ${PROJECT_SOURCE_DIR}/scripts/build-deps.sh
                        OUTPUT_VARIABLE prefix OUTPUT_STRIP_TRAILING_WHITESPACE
                        RESULT_VARIABLE failed)
        if(failed)
            message(FATAL_ERROR "scripts/build-deps.sh failed; see its message above")
        endif()
        # Not cached, so that a security update of a dependency changes the prefix at the next configure.
        set(VNDISCOVER_DEPS ${prefix})
    endif()
    message(STATUS "Dependencies: ${VNDISCOVER_DEPS}")
    add_compile_options(-ffile-prefix-map=${VNDISCOVER_DEPS}=dependencies)
    _vndiscover_static(cjson libcjson.a)
    _vndiscover_static(crypto libcrypto.a)
    _vndiscover_static(pugixml libpugixml.a)
    add_library(vndiscover::cli11 INTERFACE IMPORTED GLOBAL)
    target_include_directories(vndiscover::cli11 SYSTEM INTERFACE ${VNDISCOVER_DEPS}/include)
else()
    find_path(CJSON_INCLUDE_DIR cjson/cJSON.h REQUIRED)
    find_library(CJSON_LIBRARY cjson REQUIRED)
    find_package(OpenSSL REQUIRED COMPONENTS Crypto)
    add_library(vndiscover::cjson INTERFACE IMPORTED GLOBAL)
    target_include_directories(vndiscover::cjson INTERFACE ${CJSON_INCLUDE_DIR})
    target_link_libraries(vndiscover::cjson INTERFACE ${CJSON_LIBRARY})
    add_library(vndiscover::crypto INTERFACE IMPORTED GLOBAL)
    target_link_libraries(vndiscover::crypto INTERFACE OpenSSL::Crypto)
    find_path(PUGIXML_INCLUDE_DIR pugixml.hpp REQUIRED)
    find_library(PUGIXML_LIBRARY pugixml REQUIRED)
    add_library(vndiscover::pugixml INTERFACE IMPORTED GLOBAL)
    target_include_directories(vndiscover::pugixml SYSTEM INTERFACE ${PUGIXML_INCLUDE_DIR})
    target_link_libraries(vndiscover::pugixml INTERFACE ${PUGIXML_LIBRARY})
endif()

if(VNDISCOVER_BUILD_TESTS AND CMAKE_HOST_WIN32)
    find_package(GTest CONFIG REQUIRED) # vcpkg's feature "tests"
elseif(VNDISCOVER_BUILD_TESTS)
    set(GTEST_SOURCE_DIR /usr/src/googletest CACHE PATH "GoogleTest's sources")
    set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
    set(gtest_disable_pthreads ${WIN32} CACHE BOOL "" FORCE)
    add_subdirectory(${GTEST_SOURCE_DIR} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
endif()
