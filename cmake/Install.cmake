# cmake --install: headers, library, CMake package and pkg-config file.
include(CMakePackageConfigHelpers)

install(FILES ${TABWERK_PUBLIC_HEADERS}
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/tabwerk")
install(TARGETS tabwerk EXPORT tabwerkTargets)

set(tabwerk_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/tabwerk")
install(EXPORT tabwerkTargets
  NAMESPACE tabwerk::
  DESTINATION "${tabwerk_package_dir}")
configure_package_config_file(
  "${PROJECT_SOURCE_DIR}/cmake/tabwerkConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/tabwerkConfig.cmake"
  INSTALL_DESTINATION "${tabwerk_package_dir}")
write_basic_package_version_file(
  "${PROJECT_BINARY_DIR}/tabwerkConfigVersion.cmake"
  COMPATIBILITY SameMinorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/tabwerkConfig.cmake"
  "${PROJECT_BINARY_DIR}/tabwerkConfigVersion.cmake"
  DESTINATION "${tabwerk_package_dir}")

# The prefix in the pkg-config file is counted from the file's own place, so an
# installed tree may be moved.
set(tabwerk_pc_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX
  BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}/${tabwerk_pc_dir}"
  OUTPUT_VARIABLE tabwerk_pc_up)
cmake_path(NORMAL_PATH tabwerk_pc_up)
configure_file("${PROJECT_SOURCE_DIR}/cmake/tabwerk.pc.in"
  "${PROJECT_BINARY_DIR}/tabwerk.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/tabwerk.pc"
  DESTINATION "${tabwerk_pc_dir}")
