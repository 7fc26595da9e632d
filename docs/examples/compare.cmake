# Runs PROGRAM and compares what it prints with the file EXPECTED. After a change that is meant, the file
# is written anew:
#     build/release/bin/docs-NAME >docs/examples/NAME.out
execute_process(COMMAND ${EMULATOR} ${PROGRAM} OUTPUT_VARIABLE printed COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE "\r\n" "\n" printed "${printed}")   # as Windows ends its lines
file(READ ${EXPECTED} expected)
if(NOT printed STREQUAL expected)
    message(FATAL_ERROR "${PROGRAM} should print what stands in ${EXPECTED}, and prints:\n${printed}")
endif()
