# Fails when a source file is not laid out as clang-format does it.
#
#   cmake -DROOT=… -DCLANG_FORMAT=… -P check_format.cmake

if(NOT CLANG_FORMAT)
  message(FATAL_ERROR "clang-format is missing: run scripts/install-packages.sh")
endif()
set(files)
foreach(folder IN ITEMS include ztypes platform schema table base interp cli
        tests bench fuzz examples)
  file(GLOB_RECURSE found "${ROOT}/${folder}/*.h" "${ROOT}/${folder}/*.cpp")
  list(APPEND files ${found})
endforeach()
if(NOT files)
  message(FATAL_ERROR "no sources in ${ROOT}")
endif()
execute_process(
  COMMAND "${CLANG_FORMAT}" --dry-run -Werror ${files}
  RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "not laid out by clang-format (scripts/format.sh does it)")
endif()
list(LENGTH files count)
message(STATUS "${count} files are laid out by clang-format")
