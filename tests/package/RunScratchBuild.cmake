# Builds the source tree in a scratch folder the way a user outside the
# project would, with the same compiler, flags and ccache as this build.
#   MODE=subproject: a host project pulls the tree in with add_subdirectory
#     and BUILD_TESTING off, asking for tests, benchmarks and fuzzers all the
#     same; only the library may appear, and the host must build and run.
#   MODE=library: a normal top-level configure, then only the library target
#     is built and installed.
file(REMOVE_RECURSE ${BUILD})
set(common -G ${GENERATOR} "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}"
    "-DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER}" "-DCMAKE_BUILD_TYPE=${BUILD_TYPE}"
    "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}" "-DCMAKE_EXE_LINKER_FLAGS=${EXE_LINK_FLAGS}"
    "-DCMAKE_SHARED_LINKER_FLAGS=${SHARED_LINK_FLAGS}")

function(run what)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc)
    if(rc)
        message(FATAL_ERROR "${what} failed: ${rc}")
    endif()
endfunction()

if(MODE STREQUAL "subproject")
    run("host configure" ${CMAKE_COMMAND} -S ${PARENT} -B ${BUILD} ${common} -DVEK_SOURCE=${SOURCE}
        -DCONSUMER_MAIN=${CONSUMER_MAIN} -DBUILD_TESTING=OFF -DVEK_BUILD_TESTS=ON -DVEK_BUILD_BENCH=ON
        -DVEK_BUILD_FUZZ=ON)
    run("host build" ${CMAKE_COMMAND} --build ${BUILD})
    run("host run" ${BUILD}/host)
elseif(MODE STREQUAL "library")
    set(prefix ${BUILD}/prefix)
    run("configure" ${CMAKE_COMMAND} -S ${SOURCE} -B ${BUILD}/tree ${common})
    run("library build" ${CMAKE_COMMAND} --build ${BUILD}/tree --target vek)
    run("install" ${CMAKE_COMMAND} --install ${BUILD}/tree --prefix ${prefix})
    file(GLOB_RECURSE config ${prefix}/*/VekConfig.cmake)
    file(GLOB_RECURSE library ${prefix}/*/libvek.so)
    foreach(required config library)
        if(NOT ${required})
            message(FATAL_ERROR "the install has no ${required} file")
        endif()
    endforeach()
    if(NOT EXISTS ${prefix}/include/vek/Vek.h)
        message(FATAL_ERROR "the install has no include/vek/Vek.h")
    endif()
    if(EXISTS ${prefix}/bin/vek)
        message(FATAL_ERROR "the tool was installed without being built")
    endif()
else()
    message(FATAL_ERROR "unknown MODE '${MODE}'")
endif()
