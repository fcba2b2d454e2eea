# Runs the digest program and compares its lines with the committed ones.
#   cmake -DCOMMAND=<program, after its emulator if it needs one> -DEXPECTED=<file> -P check_digest.cmake
execute_process(COMMAND ${COMMAND} OUTPUT_VARIABLE actual COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE "\r" "" actual "${actual}")
file(READ ${EXPECTED} expected)
if(NOT actual STREQUAL expected)
    message(FATAL_ERROR "results differ from those of other systems.\nexpected:\n${expected}actual:\n${actual}")
endif()
message(STATUS "${actual}")
