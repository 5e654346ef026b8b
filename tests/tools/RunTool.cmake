# Runs the tool and checks its exit code and that its output (standard
# output and error together) matches REGEX.
set(command ${TOOL})
if(EMULATOR)
    set(command ${EMULATOR} ${TOOL})
endif()
execute_process(COMMAND ${command} ${ARGS} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(NOT rc EQUAL EXPECTED_EXIT)
    message(FATAL_ERROR "exit ${rc}, expected ${EXPECTED_EXIT}\n${out}${err}")
endif()
if(NOT "${out}${err}" MATCHES "${REGEX}")
    message(FATAL_ERROR "output does not match '${REGEX}':\n${out}${err}")
endif()
