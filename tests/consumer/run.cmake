# One step of the consumer test; see cmake/ConsumerTests.cmake for the
# variables.
string(REPLACE "|" ";" EMULATOR "${EMULATOR}")

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ECHO STDOUT
    COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# Runs the program with the installed library, and on Windows the compiler's
# run-time libraries, within reach.
function(run_consumer program)
  if(EMULATOR)
    set(path "Z:${PREFIX}/bin")
    foreach(dll IN ITEMS libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
      execute_process(COMMAND "${COMPILER}" "-print-file-name=${dll}"
        OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE
        COMMAND_ERROR_IS_FATAL ANY)
      cmake_path(GET file PARENT_PATH folder)
      string(APPEND path ";Z:${folder}")
    endforeach()
    set(ENV{WINEPATH} "${path}")
  else()
    set(ENV{LD_LIBRARY_PATH} "${PREFIX}/${LIBDIR}")
  endif()
  run(${EMULATOR} "${program}")
endfunction()

set(source "${ROOT}/tests/consumer")
set(work "${BUILD}/consumer/${STEP}")

if(STEP STREQUAL "install")
  file(REMOVE_RECURSE "${PREFIX}")
  run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${PREFIX}")
elseif(STEP STREQUAL "find_package")
  file(REMOVE_RECURSE "${work}")
  set(toolchain)
  if(TOOLCHAIN)
    set(toolchain "-DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN}")
  endif()
  run("${CMAKE_COMMAND}" -S "${source}" -B "${work}" -G Ninja ${toolchain}
    "-DCMAKE_CXX_COMPILER=${COMPILER}" "-DCMAKE_PREFIX_PATH=${PREFIX}")
  run("${CMAKE_COMMAND}" --build "${work}")
  run_consumer("${work}/consumer${SUFFIX}")
elseif(STEP STREQUAL "pkg_config")
  file(REMOVE_RECURSE "${work}")
  file(MAKE_DIRECTORY "${work}")
  # Nothing of the host's own packages.
  set(ENV{PKG_CONFIG_LIBDIR} "${PREFIX}/${LIBDIR}/pkgconfig")
  execute_process(COMMAND pkg-config --cflags --libs tabwerk
    OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE
    COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  run("${COMPILER}" -std=c++17 "${source}/main.cpp"
    -o "${work}/consumer${SUFFIX}" ${flags})
  run_consumer("${work}/consumer${SUFFIX}")
else()
  message(FATAL_ERROR "unknown step ${STEP}")
endif()
