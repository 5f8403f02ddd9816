# Says how large the library is without its symbols: cmake -DSTRIP=... -DLIBRARY=... -P size.cmake
# Says nothing where it cannot tell; a build never fails by it.
set(stripped "${LIBRARY}.stripped")
execute_process(COMMAND "${STRIP}" -o "${stripped}" "${LIBRARY}" RESULT_VARIABLE failed OUTPUT_QUIET ERROR_QUIET)
if(NOT failed AND EXISTS "${stripped}")
  file(SIZE "${stripped}" bytes)
  get_filename_component(name "${LIBRARY}" NAME)
  message("${name}: ${bytes} bytes when stripped")
endif()
file(REMOVE "${stripped}")
