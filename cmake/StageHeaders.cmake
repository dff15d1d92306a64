# Header-only libraries of the host, made available to every target system.
#
# The host's own include folder must not be on a cross compiler's path, so each
# library gets a folder with nothing in it but a link to that library.

set(TABWERK_HEADER_ROOT "/usr/include" CACHE PATH
  "Folder that holds the header-only libraries CLI, fmt and nlohmann")

# tabwerk_stage_headers(TARGET NAME): lets TARGET include <NAME/...>.
function(tabwerk_stage_headers target name)
  set(source "${TABWERK_HEADER_ROOT}/${name}")
  if(NOT IS_DIRECTORY "${source}")
    message(FATAL_ERROR
      "${source} is missing: run scripts/install-packages.sh, or set "
      "TABWERK_HEADER_ROOT")
  endif()
  set(stage "${PROJECT_BINARY_DIR}/staged/${name}")
  file(MAKE_DIRECTORY "${stage}")
  file(CREATE_LINK "${source}" "${stage}/${name}" SYMBOLIC)
  target_include_directories(${target} SYSTEM PRIVATE "${stage}")
endfunction()
