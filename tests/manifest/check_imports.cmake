# The DLL loads where nothing but Windows is installed: it names no other DLL than those of the system.
#   cmake -DMODULE=<file> -DOBJDUMP=<objdump> -P check_imports.cmake
cmake_minimum_required(VERSION 3.25)
set(system KERNEL32.dll USER32.dll msvcrt.dll)

execute_process(COMMAND ${OBJDUMP} -p ${MODULE} OUTPUT_VARIABLE table COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "DLL Name: [^\n]*" imports "${table}")
list(TRANSFORM imports REPLACE "DLL Name: " "")
list(LENGTH imports count)
if(count EQUAL 0)
    message(FATAL_ERROR "${MODULE} has no list of imports")
endif()
foreach(import IN LISTS imports)
    if(NOT import IN_LIST system)
        message(SEND_ERROR "imported, but not a DLL of the system: ${import}")
    endif()
endforeach()
message(STATUS "imports: ${imports}")
