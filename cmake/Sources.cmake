# Which sources of src/ need Windows. A folder named codec, crypto or delivery holds portable code: it includes no
# Windows header and builds on any system, where it is tested under sanitizers, with the stand-ins of
# tests/native/ for what needs Windows. A *_win.cpp in such a folder, and the rest of src/, are for Windows.
# Of those the DLL alone links the sources of interface/ itself, so that unit tests can link everything else.

# Sorts the .cpp files below src/ into three lists of absolute paths.
function(vndiscover_sort_sources portable windows dll)
    file(GLOB_RECURSE all CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/*.cpp)
    foreach(path IN LISTS all)
        if(path MATCHES "/(codec|crypto|delivery)/[^/]*$" AND NOT path MATCHES "_win\\.cpp$")
            list(APPEND portableFiles ${path})
        elseif(path MATCHES "/src/interface/[^/]*$")
            list(APPEND dllFiles ${path})
        else()
            list(APPEND windowsFiles ${path})
        endif()
    endforeach()
    set(${portable} "${portableFiles}" PARENT_SCOPE)
    set(${windows} "${windowsFiles}" PARENT_SCOPE)
    set(${dll} "${dllFiles}" PARENT_SCOPE)
endfunction()
