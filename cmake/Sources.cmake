# Which sources of src/ need Windows. Code in a folder named codec, crypto or delivery is portable: it includes no
# Windows header, builds on any system and is tested there under sanitizers, with the stubs of tests/native/ for
# what needs Windows. A *_win.cpp in such a folder, and the rest of src/, are for Windows. Only the DLL links the
# sources of interface/ itself, so that unit tests can link everything else.

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
