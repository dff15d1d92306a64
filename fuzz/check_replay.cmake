# Checks that replaying a corpus fails where there is nothing to replay.
#
#   cmake -DPROGRAM=… -DEMULATOR=… -DWORK=… -P check_replay.cmake
#
# PROGRAM is a replaying fuzz target, EMULATOR what runs it, or empty; WORK is a
# folder that is made anew.
cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE "${WORK}")
file(MAKE_DIRECTORY "${WORK}/empty" "${WORK}/unreadable/folder")
file(WRITE "${WORK}/sound/input" "x")
file(WRITE "${WORK}/sound_hex/golden.hex" "61 62 # two bytes\n")
file(WRITE "${WORK}/no_hex/golden.txt" "61\n")
file(WRITE "${WORK}/damaged_hex/golden.hex" "6\n")

set(failures)
function(expect code)
  execute_process(COMMAND ${EMULATOR} "${PROGRAM}" ${ARGN}
    WORKING_DIRECTORY "${WORK}"
    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result STREQUAL code)
    message("${ARGN}: expected ${code}, got ${result}\n${output}")
    set(failures "${failures}x" PARENT_SCOPE)
  endif()
endfunction()

expect(0 sound)
expect(0 sound sound_hex)
expect(1 empty)
expect(1 missing)
expect(1 unreadable)
expect(1 sound no_hex)
expect(1 sound damaged_hex)
expect(1 sound missing)
expect(2)
if(failures)
  message(FATAL_ERROR "a corpus that cannot be replayed has to fail")
endif()
