# Installs the library into a folder of the build and uses it from there, by
# find_package and by pkg-config, with the public headers as C++17.

# As one word: a list would fall apart on its way through add_test.
list(JOIN CMAKE_CROSSCOMPILING_EMULATOR "|" emulator)
set(prefix "${PROJECT_BINARY_DIR}/consumer/prefix")
set(settings
  "-DROOT=${PROJECT_SOURCE_DIR}"
  "-DBUILD=${PROJECT_BINARY_DIR}"
  "-DPREFIX=${prefix}"
  "-DLIBDIR=${CMAKE_INSTALL_LIBDIR}"
  "-DCOMPILER=${CMAKE_CXX_COMPILER}"
  "-DTOOLCHAIN=${CMAKE_TOOLCHAIN_FILE}"
  "-DEMULATOR=${emulator}"
  "-DSUFFIX=${CMAKE_EXECUTABLE_SUFFIX}")
foreach(step IN ITEMS install find_package pkg_config)
  add_test(NAME consumer.${step}
    COMMAND "${CMAKE_COMMAND}" "-DSTEP=${step}" ${settings}
      -P "${PROJECT_SOURCE_DIR}/tests/consumer/run.cmake")
endforeach()
set_tests_properties(consumer.install PROPERTIES
  FIXTURES_SETUP tabwerk_prefix RESOURCE_LOCK build)
set_tests_properties(consumer.find_package consumer.pkg_config PROPERTIES
  FIXTURES_REQUIRED tabwerk_prefix)
