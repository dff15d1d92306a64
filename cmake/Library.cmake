# The library: one object library of all layers, and the shared library that
# is made of it.

# Every source file of a layer belongs to the library, so the folders are the
# list.  CONFIGURE_DEPENDS looks again at each build: a new file needs no change
# here, and a deleted one cannot linger.
set(TABWERK_LAYERS ztypes platform schema table base interp)
set(tabwerk_sources)
foreach(layer IN LISTS TABWERK_LAYERS)
  file(GLOB layer_sources CONFIGURE_DEPENDS
    "${PROJECT_SOURCE_DIR}/${layer}/*.cpp")
  list(APPEND tabwerk_sources ${layer_sources})
endforeach()
file(GLOB TABWERK_PUBLIC_HEADERS CONFIGURE_DEPENDS
  "${PROJECT_SOURCE_DIR}/include/*.h")

# The seam stands alone: tests put their own in this place, the fuzz targets in
# that of the part which names files.
set(tabwerk_seam_files "${PROJECT_SOURCE_DIR}/platform/seam.cpp")
set(tabwerk_seam_streams "${PROJECT_SOURCE_DIR}/platform/seam_streams.cpp")
list(REMOVE_ITEM tabwerk_sources
  "${tabwerk_seam_files}" "${tabwerk_seam_streams}")

# What the fuzz targets are to find their way through.
function(tabwerk_guide_fuzzing target)
  if(TABWERK_FUZZ)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
endfunction()

function(tabwerk_add_objects name)
  add_library(${name} OBJECT ${ARGN})
  target_link_libraries(${name} PRIVATE tabwerk_settings)
  target_include_directories(${name} PRIVATE
    "${PROJECT_SOURCE_DIR}" "${PROJECT_SOURCE_DIR}/include")
  target_compile_definitions(${name} PRIVATE TABWERK_BUILDING)
  target_compile_options(${name} PRIVATE ${TABWERK_LIBRARY_OPTIONS})
  tabwerk_guide_fuzzing(${name})
  set_target_properties(${name} PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
endfunction()

tabwerk_add_objects(tabwerk_objects ${tabwerk_sources})
tabwerk_unite(tabwerk_objects)
tabwerk_add_objects(tabwerk_seam_files "${tabwerk_seam_files}")
tabwerk_add_objects(tabwerk_seam_streams "${tabwerk_seam_streams}")

add_library(tabwerk SHARED
  $<TARGET_OBJECTS:tabwerk_objects>
  $<TARGET_OBJECTS:tabwerk_seam_files> $<TARGET_OBJECTS:tabwerk_seam_streams>)
add_library(tabwerk::tabwerk ALIAS tabwerk)
set_target_properties(tabwerk PROPERTIES
  VERSION ${PROJECT_VERSION}
  SOVERSION ${TABWERK_SOVERSION})
target_compile_features(tabwerk INTERFACE cxx_std_17)
target_include_directories(tabwerk INTERFACE
  "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>"
  "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/tabwerk>")

if(WIN32)
  # The DLL brings its run-time library along, so that it can be handed out
  # alone.  Only what is marked leaves it.
  set_target_properties(tabwerk PROPERTIES PREFIX "")  # tabwerk.dll
  target_link_options(tabwerk PRIVATE -static -Wl,--exclude-all-symbols)
else()
  # The classes' inline helpers and the templates that they use have default
  # visibility; the version script keeps them inside.
  set(tabwerk_exports "${PROJECT_SOURCE_DIR}/cmake/exports.map")
  target_link_options(tabwerk PRIVATE
    "-Wl,--version-script=${tabwerk_exports}"
    # Its own calls of exported members go straight there.
    -Wl,-Bsymbolic-functions)
  set_target_properties(tabwerk PROPERTIES LINK_DEPENDS "${tabwerk_exports}")
  if(NOT TABWERK_SANITIZE)
    # A sanitizer's run-time library is only there in the program.
    target_link_options(tabwerk PRIVATE -Wl,-z,defs)
  endif()
endif()

# For programs that reach what the shared library hides: links the objects
# themselves.  With SEAM, the system is bound directly; without, the program
# brings its own seam.
function(tabwerk_link_objects target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "SEAM" "" "")
  target_link_libraries(${target} PRIVATE tabwerk_settings tabwerk_objects)
  if(arg_SEAM)
    target_link_libraries(${target} PRIVATE
      tabwerk_seam_files tabwerk_seam_streams)
  endif()
  target_compile_definitions(${target} PRIVATE TABWERK_STATIC)
  target_include_directories(${target} PRIVATE
    "${PROJECT_SOURCE_DIR}" "${PROJECT_SOURCE_DIR}/include")
  set_target_properties(${target} PROPERTIES
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  if(WIN32)
    target_link_options(${target} PRIVATE -static)
    # The objects carry their export marks into every program, so the linker
    # writes an import library for it.  Nobody needs it, and that of a program
    # named tabwerk would replace the DLL's.
    set_target_properties(${target} PROPERTIES
      ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/programs_lib")
  endif()
endfunction()
