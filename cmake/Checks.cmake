# Checks of the sources and of the built library, as tests.
#
# With a sanitizer or coverage in it the library is not the one that is handed
# out, so those builds leave the checks to the others.

# --- Every header compiles alone: tabwerk_lone_headers --------------------

# Removes from a list of headers those that compile alone anyway: each has a
# guard, and a source of its name includes it before anything else.
function(tabwerk_drop_headers_with_sources list)
  set(left)
  foreach(header IN LISTS ${list})
    cmake_path(REPLACE_EXTENSION header LAST_ONLY cpp OUTPUT_VARIABLE source)
    cmake_path(GET header FILENAME name)
    set(first "")
    if(EXISTS "${source}")
      file(STRINGS "${source}" first REGEX "^#include" LIMIT_COUNT 1)
    endif()
    file(STRINGS "${header}" guard REGEX "^#(ifndef|define) TABWERK_[A-Z_]+_H$"
      LIMIT_COUNT 2)
    list(LENGTH guard guard_lines)
    if(NOT first MATCHES "^#include \"([a-z_]+/)*${name}\"" OR
       NOT guard_lines EQUAL 2)
      list(APPEND left "${header}")
    endif()
  endforeach()
  set(${list} ${left} PARENT_SCOPE)
endfunction()

# Makes an object library of one file per header that includes nothing else
# (and that twice, for the guard).
function(tabwerk_lone_header_library name standard)
  set(sources)
  foreach(header IN LISTS ARGN)
    cmake_path(RELATIVE_PATH header BASE_DIRECTORY "${PROJECT_SOURCE_DIR}"
      OUTPUT_VARIABLE path)
    string(REGEX REPLACE "^include/" "" path "${path}")
    string(MAKE_C_IDENTIFIER "${path}" file)
    set(source "${PROJECT_BINARY_DIR}/${name}/${file}.cpp")
    file(CONFIGURE OUTPUT "${source}" @ONLY CONTENT
"#include \"${path}\"
#include \"${path}\"
")
    list(APPEND sources "${source}")
  endforeach()
  add_library(${name} OBJECT EXCLUDE_FROM_ALL ${sources})
  set_target_properties(${name} PROPERTIES CXX_STANDARD ${standard})
  target_compile_options(${name} PRIVATE -O0 -g0)
  target_link_libraries(${name} PRIVATE tabwerk_settings)
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/include")
endfunction()

function(tabwerk_add_header_checks)
  # As a program sees them that uses the library.
  tabwerk_lone_header_library(tabwerk_lone_headers_cxx17 17
    ${TABWERK_PUBLIC_HEADERS})
  add_custom_target(tabwerk_lone_headers ALL)
  add_dependencies(tabwerk_lone_headers tabwerk_lone_headers_cxx17)

  # As the library itself sees them.  What does not depend on the system is
  # looked at once, in the native build.
  if(WIN32)
    file(GLOB headers CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/platform/*.h")
    list(FILTER headers EXCLUDE REGEX "_linux\\.h$")
  else()
    set(headers ${TABWERK_PUBLIC_HEADERS})
    foreach(folder IN LISTS TABWERK_LAYERS ITEMS cli fuzz tests/*)
      file(GLOB more CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/${folder}/*.h")
      list(APPEND headers ${more})
    endforeach()
    list(FILTER headers EXCLUDE REGEX "_windows\\.h$")
  endif()
  tabwerk_drop_headers_with_sources(headers)
  tabwerk_lone_header_library(tabwerk_lone_headers_cxx20 20 ${headers})
  target_include_directories(tabwerk_lone_headers_cxx20 PRIVATE
    "${PROJECT_SOURCE_DIR}")
  target_link_libraries(tabwerk_lone_headers_cxx20 PRIVATE tabwerk_gtest)
  target_compile_definitions(tabwerk_lone_headers_cxx20 PRIVATE TABWERK_STATIC)
  if(TARGET tabwerk_tool)
    tabwerk_stage_headers(tabwerk_lone_headers_cxx20 CLI)
    tabwerk_stage_headers(tabwerk_lone_headers_cxx20 nlohmann)
    tabwerk_stage_headers(tabwerk_lone_headers_cxx20 fmt)
  endif()
  add_dependencies(tabwerk_lone_headers tabwerk_lone_headers_cxx20)

  # Nothing to do where everything was built; a header that does not compile
  # fails here as well.
  add_test(NAME check.lone_headers
    COMMAND "${CMAKE_COMMAND}" --build "${PROJECT_BINARY_DIR}"
      --target tabwerk_lone_headers)
  set_tests_properties(check.lone_headers PROPERTIES RESOURCE_LOCK build)
endfunction()

# --- Sources ---------------------------------------------------------------

function(tabwerk_add_source_checks)
  add_test(NAME check.layers
    COMMAND "${CMAKE_COMMAND}" "-DROOT=${PROJECT_SOURCE_DIR}"
      -P "${PROJECT_SOURCE_DIR}/cmake/check_layers.cmake")
  # The check itself: a tree that breaks every rule once.
  add_test(NAME check.layers.finds_each_violation
    COMMAND "${CMAKE_COMMAND}" "-DROOT=${PROJECT_SOURCE_DIR}/tests/checks/layers"
      -DEXPECT=expected.txt
      -P "${PROJECT_SOURCE_DIR}/cmake/check_layers.cmake")

  find_program(TABWERK_CLANG_FORMAT NAMES clang-format-14 clang-format)
  add_test(NAME check.format
    COMMAND "${CMAKE_COMMAND}" "-DROOT=${PROJECT_SOURCE_DIR}"
      "-DCLANG_FORMAT=${TABWERK_CLANG_FORMAT}"
      -P "${PROJECT_SOURCE_DIR}/cmake/check_format.cmake")
endfunction()

# --- Exported symbols ------------------------------------------------------

function(tabwerk_add_export_check)
  if(WIN32)
    set(system windows)
  else()
    set(system linux)
  endif()
  set(script
    "${CMAKE_COMMAND}" -E env
    "NM=${CMAKE_NM}" "OBJDUMP=${CMAKE_OBJDUMP}"
    bash "${PROJECT_SOURCE_DIR}/cmake/check_exports.sh")
  set(arguments
    ${system} $<TARGET_FILE:tabwerk> "${PROJECT_SOURCE_DIR}/cmake/exports.txt")
  add_test(NAME check.exports COMMAND ${script} ${arguments})
  add_custom_target(update_exports
    COMMAND ${script} --update ${arguments}
    DEPENDS tabwerk VERBATIM
    COMMENT "Rewriting cmake/exports.txt for ${system}")
endfunction()

# --- clang-tidy ------------------------------------------------------------

function(tabwerk_add_tidy_target)
  find_program(TABWERK_RUN_CLANG_TIDY
    NAMES run-clang-tidy-14 run-clang-tidy)
  if(NOT TABWERK_RUN_CLANG_TIDY)
    return()
  endif()
  cmake_host_system_information(RESULT cores QUERY NUMBER_OF_LOGICAL_CORES)
  list(JOIN TABWERK_LAYERS "|" layers)
  # Files that are compiled together are looked at together: the headers, which
  # take most of the time, are then read once for all.
  set(tidy "${PROJECT_SOURCE_DIR}/(${layers}|examples)/|tabwerk_objects")
  # The tool apart, as it takes longer than all else.
  set(tidy_tool "${PROJECT_SOURCE_DIR}/cli/|tabwerk_cli")
  foreach(target IN ITEMS tidy tidy_tool)
    add_custom_target(${target}
      COMMAND "${TABWERK_RUN_CLANG_TIDY}" -quiet -j ${cores}
        -p "${PROJECT_BINARY_DIR}" "${${target}}"
      WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}"
      VERBATIM USES_TERMINAL)
  endforeach()
endfunction()

tabwerk_add_tidy_target()
if(TABWERK_TESTS AND NOT TABWERK_SANITIZE AND NOT TABWERK_COVERAGE)
  tabwerk_add_header_checks()
  tabwerk_add_export_check()
  if(NOT CMAKE_CROSSCOMPILING)
    tabwerk_add_source_checks()
  endif()
endif()
