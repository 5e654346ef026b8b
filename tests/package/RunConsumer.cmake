# Configures, builds and runs the consumer project against an installed Vek.
file(REMOVE_RECURSE ${BUILD})
# Same compiler flags as the library (a sanitizer build needs its runtime
# in the consumer too).
set(args -S ${SOURCE} -B ${BUILD} -G ${GENERATOR} -DCMAKE_PREFIX_PATH=${PREFIX}
    "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}" "-DCMAKE_EXE_LINKER_FLAGS=${LINK_FLAGS}")
if(TOOLCHAIN)
    list(APPEND args -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} -DCMAKE_FIND_ROOT_PATH=${PREFIX})
endif()
execute_process(COMMAND ${CMAKE_COMMAND} ${args} RESULT_VARIABLE rc)
if(rc)
    message(FATAL_ERROR "consumer configure failed: ${rc}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} --build ${BUILD} RESULT_VARIABLE rc)
if(rc)
    message(FATAL_ERROR "consumer build failed: ${rc}")
endif()
if(MINGW)
    # The consumer finds vek.dll next to it, as a Windows application would.
    file(GLOB dlls ${PREFIX}/bin/*.dll)
    file(COPY ${dlls} DESTINATION ${BUILD})
    execute_process(COMMAND ${EMULATOR} ${BUILD}/consumer.exe RESULT_VARIABLE rc)
else()
    execute_process(COMMAND ${BUILD}/consumer RESULT_VARIABLE rc)
endif()
if(rc)
    message(FATAL_ERROR "consumer run failed: ${rc}")
endif()
