# Which files of src/ need Windows. The rest includes no Windows header and builds on any system: there it
# is tested under sanitizers, with the stand-ins of tests/native/ for the Windows back ends of src/support/.
set(VNDISCOVER_WINDOWS_SOURCES
    "^support/(debug_log|registry|debug_switches|text_convert|system_library|zeroed_pages)\\.cpp$"
    "^net/"
    "^snmp/(vx_snmp_mgr.*|bind_address|directed_request)\\.cpp$"
    "^snmpv3/(capi_.*|cng_.*|windows_.*|discover_v3.*|directed_v3.*|vx_snmp_mgr_v3.*|request_v3.*)\\.cpp$"
    "^wsd/"
    "^interface/")
# Exceptions to the list above.
set(VNDISCOVER_PORTABLE_SOURCES "^interface/delivery/json_.*\\.cpp$")
# What only the DLL itself links, so that unit tests can link everything else.
set(VNDISCOVER_DLL_SOURCES "^interface/(dll_main|exports.*)\\.cpp$")

function(_vndiscover_matches result name)
    set(${result} FALSE PARENT_SCOPE)
    foreach(pattern IN LISTS ARGN)
        if(name MATCHES "${pattern}")
            set(${result} TRUE PARENT_SCOPE)
        endif()
    endforeach()
endfunction()

# Sorts the .cpp files below src/ into three lists of absolute paths.
function(vndiscover_sort_sources portable windows dll)
    file(GLOB_RECURSE all CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}/src
         ${PROJECT_SOURCE_DIR}/src/*.cpp)
    foreach(name IN LISTS all)
        set(path ${PROJECT_SOURCE_DIR}/src/${name})
        _vndiscover_matches(isDll "${name}" ${VNDISCOVER_DLL_SOURCES})
        _vndiscover_matches(isWindows "${name}" ${VNDISCOVER_WINDOWS_SOURCES})
        _vndiscover_matches(isPortable "${name}" ${VNDISCOVER_PORTABLE_SOURCES})
        if(isDll)
            list(APPEND dllFiles ${path})
        elseif(isWindows AND NOT isPortable)
            list(APPEND windowsFiles ${path})
        else()
            list(APPEND portableFiles ${path})
        endif()
    endforeach()
    set(${portable} "${portableFiles}" PARENT_SCOPE)
    set(${windows} "${windowsFiles}" PARENT_SCOPE)
    set(${dll} "${dllFiles}" PARENT_SCOPE)
endfunction()
