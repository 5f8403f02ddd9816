# CLI11::CLI11, the reader of command lines, which is nothing but headers.
if(NOT CMAKE_CROSSCOMPILING)
  find_package(CLI11 REQUIRED)
elseif(NOT TARGET CLI11::CLI11)
  # They stand among this system's own headers, which are none for another system.
  find_path(VELNLS_CLI11 CLI/CLI.hpp PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  file(COPY ${VELNLS_CLI11}/CLI DESTINATION ${CMAKE_BINARY_DIR}/headers)
  add_library(CLI11::CLI11 INTERFACE IMPORTED)
  target_include_directories(CLI11::CLI11 INTERFACE ${CMAKE_BINARY_DIR}/headers)
endif()
