# Runs after CPack has written the ZIP: removes what differs between two builds of one commit.
find_program(VNDISCOVER_PYTHON NAMES python3 python)
if(NOT VNDISCOVER_PYTHON)
    message(WARNING "No Python: the ZIP is complete, but another build of this commit will differ from it")
    return()
endif()
foreach(zip IN LISTS CPACK_PACKAGE_FILES)
    execute_process(COMMAND ${VNDISCOVER_PYTHON} ${CMAKE_CURRENT_LIST_DIR}/normalise_zip.py ${zip}
                    COMMAND_ERROR_IS_FATAL ANY)
endforeach()
