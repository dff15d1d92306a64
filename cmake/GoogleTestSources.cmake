# GoogleTest from the sources that Debian's package ships, built with the same
# compiler and settings as the tests.  Tests link tabwerk_gtest; main() is
# their own.
#
# The package's own CMake files are not used: they ask for a C compiler, which a
# cross build has no other use for.

set(TABWERK_GOOGLETEST_DIR "/usr/src/googletest" CACHE PATH
  "Folder with the sources of GoogleTest")
set(gtest_dir "${TABWERK_GOOGLETEST_DIR}/googletest")
if(NOT EXISTS "${gtest_dir}/src/gtest-all.cc")
  message(FATAL_ERROR
    "No GoogleTest in ${TABWERK_GOOGLETEST_DIR}: run "
    "scripts/install-packages.sh, or set TABWERK_GOOGLETEST_DIR")
endif()

add_library(tabwerk_gtest STATIC EXCLUDE_FROM_ALL
  "${gtest_dir}/src/gtest-all.cc")
target_include_directories(tabwerk_gtest PRIVATE "${gtest_dir}")
# As system headers: their warnings are not ours.
target_include_directories(tabwerk_gtest SYSTEM INTERFACE
  "${gtest_dir}/include")
target_include_directories(tabwerk_gtest SYSTEM PRIVATE "${gtest_dir}/include")
set_target_properties(tabwerk_gtest PROPERTIES COMPILE_WARNING_AS_ERROR OFF)
find_package(Threads REQUIRED)
target_link_libraries(tabwerk_gtest PUBLIC Threads::Threads)
