# Warnings shared by every target of the project.
function(vek_set_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wno-unused-parameter
        -Wno-missing-field-initializers)
endfunction()

# Static runtime for the Windows build, so vek.dll and the executables load
# under Wine without the mingw runtime DLLs on the path.
function(vek_static_runtime target)
    if(MINGW)
        target_link_options(${target} PRIVATE -static-libgcc -static-libstdc++ -static)
    endif()
endfunction()
