# Runs `vek convert` on a WAV file and checks the raw file it writes: its
# size, the first samples against the file's own data chunk (for s16be, its
# little-endian samples byte-swapped), and, when FFMPEG is set, every byte
# against ffmpeg's conversion of the same file.
#
# TOOL_INPUT and TOOL_OUT are the paths as the tool sees them (Wine sees the
# host's root as Z:); INPUT and OUT as this script does.
set(command ${TOOL})
if(EMULATOR)
    set(command ${EMULATOR} ${TOOL})
endif()
file(REMOVE ${OUT})
execute_process(COMMAND ${command} convert --quiet --to ${FORMAT} -o ${TOOL_OUT} ${TOOL_INPUT}
    RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(NOT rc EQUAL 0)
    message(FATAL_ERROR "exit ${rc}\n${out}${err}")
endif()
file(SIZE ${OUT} size)
if(NOT size EQUAL EXPECTED_SIZE)
    message(FATAL_ERROR "${OUT} has ${size} bytes, expected ${EXPECTED_SIZE}\n${out}${err}")
endif()

if(FORMAT STREQUAL "s16be")
    # The first 16 samples of the data chunk, each with its bytes swapped.
    file(READ ${INPUT} wav HEX)
    string(FIND "${wav}" "64617461" at)
    math(EXPR odd "${at} % 2")
    if(at LESS 0 OR odd)
        message(FATAL_ERROR "no data chunk in ${INPUT}")
    endif()
    math(EXPR start "${at} + 16")
    string(SUBSTRING "${wav}" ${start} 64 samples)
    set(expected "")
    foreach(i RANGE 0 60 4)
        string(SUBSTRING "${samples}" ${i} 2 low)
        math(EXPR next "${i} + 2")
        string(SUBSTRING "${samples}" ${next} 2 high)
        string(APPEND expected "${high}${low}")
    endforeach()
    file(READ ${OUT} got HEX LIMIT 32)
    if(NOT got STREQUAL expected)
        message(FATAL_ERROR "first samples ${got}, expected ${expected}")
    endif()
endif()

if(FFMPEG)
    file(REMOVE ${OUT}.ffmpeg)
    execute_process(COMMAND ${FFMPEG} -v error -nostdin -y -i ${INPUT} -f ${FORMAT} ${OUT}.ffmpeg RESULT_VARIABLE frc)
    if(NOT frc EQUAL 0)
        message(FATAL_ERROR "ffmpeg failed converting ${INPUT} to ${FORMAT}")
    endif()
    file(SHA256 ${OUT} ours)
    file(SHA256 ${OUT}.ffmpeg theirs)
    if(NOT ours STREQUAL theirs)
        message(FATAL_ERROR "${OUT} differs from ffmpeg's ${FORMAT} conversion")
    endif()
endif()
