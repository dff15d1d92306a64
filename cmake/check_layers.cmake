# Rejects what the table of layers does not allow.
#
#   cmake -DROOT=… [-DEXPECT=FILE] -P check_layers.cmake
#
# With EXPECT, the findings have to be exactly the lines of ROOT/FILE; without,
# there have to be none.
cmake_minimum_required(VERSION 3.25)

# Who may include whom.  A folder may always include itself; the layers stand
# on one another.
set(layers include ztypes platform schema table base interp)
set(below)
foreach(layer IN LISTS layers)
  list(APPEND below ${layer})
  set(may_include_${layer} ${below})
endforeach()
# The tool sees what a host sees, and looks into damaged files.
set(may_include_cli cli include schema)

# Single headers beyond that.  Text translation is a leaf: it knows the manager's
# language and nothing else of it.
set(exception_table "base/translation.h")

# Headers and names that belong to platform/ alone.
set(system_headers
  "windows\\.h|winsock2?\\.h|winternl\\.h|io\\.h|share\\.h|direct\\.h|process\\.h"
  "unistd\\.h|fcntl\\.h|dirent\\.h|pthread\\.h|dlfcn\\.h|sys/.*"
  "fstream|filesystem|csignal|signal\\.h|clocale|locale\\.h|ctime|time\\.h")
list(JOIN system_headers "|" system_headers)
set(system_calls
  "_?w?fopen(_s|64)?|_w?fsopen|freopen|fdopen|tmpfile|tmpnam|mkstemp"
  "fread|fwrite|fseeko?(64)?|ftello?(64)?|fflush|fclose|fputs?c?|fgetw?[cs]"
  "f?w?printf|f?scanf|puts|putchar|rename|remove|unlink|rmdir|mkdir"
  "malloc|calloc|realloc|getenv|setlocale|system|time|clock")
list(JOIN system_calls "|" system_calls)
set(system_macros "_WIN32|_WIN64|__MINGW[0-9A-Z_]*|__linux__|__unix__|__APPLE__")

set(findings)
function(report path text)
  list(APPEND findings "${path}: ${text}")
  set(findings "${findings}" PARENT_SCOPE)
endfunction()

# The code of a file, without comments, as one string that CMake's lists do not
# split.
function(read_code path out)
  file(READ "${path}" code)
  string(REPLACE ";" " " code "${code}")
  string(REGEX REPLACE "[][]" "|" code "${code}")
  string(REGEX REPLACE "//[^\n]*" "" code "${code}")
  string(REGEX REPLACE "/\\*([^*]|\\*+[^*/])*\\*+/" "" code "${code}")
  set(${out} "\n${code}\n" PARENT_SCOPE)
endfunction()

# A quoted include names its folder; the public headers are named alone.
function(check_quoted layer path name)
  if(name MATCHES "^([^/]+)/")
    set(folder "${CMAKE_MATCH_1}")
  elseif(EXISTS "${ROOT}/include/${name}")
    set(folder include)
  else()
    report("${path}" "\"${name}\" is no public header and names no folder")
    set(findings "${findings}" PARENT_SCOPE)
    return()
  endif()
  if(NOT folder IN_LIST may_include_${layer}
     AND NOT name IN_LIST exception_${layer})
    report("${path}" "${layer}/ may not include \"${name}\"")
    set(findings "${findings}" PARENT_SCOPE)
  endif()
endfunction()

function(check_includes layer path code)
  string(REGEX MATCHALL "\n[ \t]*#[ \t]*include[ \t]*[\"<][^\">\n]+" includes
    "${code}")
  foreach(include IN LISTS includes)
    string(REGEX MATCH "([\"<])(.*)$" unused "${include}")
    set(name "${CMAKE_MATCH_2}")
    if(CMAKE_MATCH_1 STREQUAL "\"")
      check_quoted(${layer} "${path}" "${name}")
    elseif(NOT layer STREQUAL "platform" AND NOT layer STREQUAL "cli"
           AND name MATCHES "^(${system_headers})$")
      report("${path}" "<${name}> belongs to platform/")
    endif()
  endforeach()
  set(findings "${findings}" PARENT_SCOPE)
endfunction()

# A call, not a member of something and not a name of ours; std:: and the
# global namespace count.
function(check_calls path code)
  string(REGEX REPLACE "\"([^\"\\\n]|\\\\.)*\"" "\"\"" code "${code}")
  string(REGEX MATCHALL
    "(std::|[^A-Za-z0-9_:.>~]|[^A-Za-z0-9_>]::)(${system_calls})\\(" calls
    "${code}")
  foreach(call IN LISTS calls)
    string(REGEX MATCH "(${system_calls})\\($" unused "${call}")
    report("${path}" "${CMAKE_MATCH_1}() belongs to platform/")
  endforeach()
  set(findings "${findings}" PARENT_SCOPE)
endfunction()

function(check_macros path code)
  string(REGEX MATCHALL "[^A-Za-z0-9_](${system_macros})[^A-Za-z0-9_]" macros
    "${code}")
  foreach(macro IN LISTS macros)
    string(REGEX MATCH "(${system_macros})" unused "${macro}")
    report("${path}" "${CMAKE_MATCH_1} belongs to platform/")
  endforeach()
  set(findings "${findings}" PARENT_SCOPE)
endfunction()

set(count 0)
foreach(layer IN LISTS layers ITEMS cli)
  file(GLOB files RELATIVE "${ROOT}"
    "${ROOT}/${layer}/*.h" "${ROOT}/${layer}/*.cpp" "${ROOT}/${layer}/*.inc")
  foreach(path IN LISTS files)
    math(EXPR count "${count} + 1")
    read_code("${ROOT}/${path}" code)
    check_includes(${layer} "${path}" "${code}")
    if(layer STREQUAL "platform" OR path STREQUAL "include/tabwerk_export.h")
      continue()
    endif()
    # The console is the tool's own: nothing else writes to one.
    if(path MATCHES "^cli/console\\.cpp$")
      continue()
    endif()
    check_macros("${path}" "${code}")
    if(NOT layer STREQUAL "cli")
      check_calls("${path}" "${code}")
    endif()
  endforeach()
endforeach()

if(count EQUAL 0)
  message(FATAL_ERROR "no sources in ${ROOT}")
endif()
list(SORT findings)
list(JOIN findings "\n" text)
if(DEFINED EXPECT)
  file(READ "${ROOT}/${EXPECT}" expected)
  if(NOT "${text}\n" STREQUAL "${expected}")
    message(FATAL_ERROR "expected:\n${expected}\nfound:\n${text}")
  endif()
elseif(findings)
  message(FATAL_ERROR "the layers do not allow:\n${text}")
endif()
message(STATUS "${count} files examined")
