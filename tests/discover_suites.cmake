# Read by ctest before it runs: makes one test of every suite of a program of
# tests.
#
#   PROGRAM   the program
#   EMULATOR  what runs it, empty where the system does
#   PREFIX    of the names of the tests
execute_process(COMMAND ${EMULATOR} "${PROGRAM}" --gtest_list_tests
  OUTPUT_VARIABLE listed RESULT_VARIABLE result TIMEOUT 120)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} does not list its tests: ${result}")
endif()
string(REGEX MATCHALL "(^|\n)[^ \r\n]+\\." suites "${listed}")
foreach(suite IN LISTS suites)
  string(REGEX REPLACE "^\n" "" suite "${suite}")
  add_test("${PREFIX}.${suite}" ${EMULATOR} "${PROGRAM}"
    "--gtest_filter=${suite}*")
  set_tests_properties("${PREFIX}.${suite}" PROPERTIES TIMEOUT 600)
endforeach()
