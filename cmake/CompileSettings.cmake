# How our own code is compiled.
#
# tabwerk_settings is for every target of ours; it never reaches a program that
# uses the library.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

add_library(tabwerk_settings INTERFACE)

# Not among them:
#   -Wuseless-cast  std::int32_t is long on one system and int on the other, so
#                   a cast that is needed here is useless there;
#   -Wduplicated-branches  takes constants of equal value for the same, such as
#                   the sizes of two types;
#   -Wpadded, -Wsystem-headers  nothing we could act on.
target_compile_options(tabwerk_settings INTERFACE
  -Wall -Wextra -Wpedantic
  -Wshadow -Wconversion -Wsign-conversion
  -Wold-style-cast -Wcast-qual -Wcast-align -Wformat=2 -Wundef
  -Wnon-virtual-dtor -Woverloaded-virtual -Wextra-semi
  -Wimplicit-fallthrough -Wunused -Wvla)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(tabwerk_settings INTERFACE
    -Wduplicated-cond -Wlogical-op -Wcatch-value=3)
  # g++ 12 reports these inside its own library wherever it inlines the joining
  # of short strings or looks into an optional number.  The sanitizer build
  # finds the real ones.
  target_compile_options(tabwerk_settings INTERFACE
    -Wno-array-bounds -Wno-restrict -Wno-maybe-uninitialized
    -Wno-stringop-overflow -Wno-stringop-overread)
endif()

# What is said from here on holds for GoogleTest as well: all objects of a
# program have to agree on it.
if(TABWERK_HARDEN)
  add_compile_definitions(_GLIBCXX_ASSERTIONS)
endif()
if(TABWERK_SANITIZE)
  # For tests: everything takes several times as long and as much memory.
  add_compile_definitions(TABWERK_SANITIZED)
  add_compile_options("-fsanitize=${TABWERK_SANITIZE}"
    -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options("-fsanitize=${TABWERK_SANITIZE}")
endif()
if(TABWERK_COVERAGE)
  # Absolute profile paths, so that tests may change their working directory.
  add_compile_options(--coverage -fprofile-abs-path)
  add_link_options(--coverage)
endif()

# With TABWERK_TOGETHER: compiles the files of a target some at a time, because
# reading the same headers for every file takes most of the time otherwise.  What
# files keep to themselves has to have different names then.  A build without it
# shows that every file includes what it uses.
function(tabwerk_unite target)
  if(TABWERK_TOGETHER)
    set_target_properties(${target} PROPERTIES
      UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 12)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
      # Types of an unnamed namespace in a class: of a header it would be wrong,
      # and that is what it takes all these files for.
      target_compile_options(${target} PRIVATE -Wno-subobject-linkage)
    endif()
  endif()
endfunction()

# For tests: compiles the standard library's headers that most files of a target
# include only once, and further ones that are given.
function(tabwerk_precompile target)
  target_precompile_headers(${target} PRIVATE
    <algorithm> <cstdint> <functional> <map> <memory> <optional> <string>
    <string_view> <utility> <vector> ${ARGN})
endfunction()
