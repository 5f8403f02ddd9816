# An nlsgen that runs on the machine that builds: the data file is the same for every system.
set(VELNLS_NLSGEN "" CACHE FILEPATH "Program that makes the data file of a cross build; when empty, one is built")

if(VELNLS_NLSGEN)
  set(nlsgen_command ${VELNLS_NLSGEN})
  set(nlsgen_dependency ${VELNLS_NLSGEN})
else()
  include(ExternalProject)
  set(nlsgen_folder ${CMAKE_BINARY_DIR}/build-machine)
  set(nlsgen_command ${nlsgen_folder}/tools/nlsgen/nlsgen)
  ExternalProject_Add(velnls_build_machine
    SOURCE_DIR ${PROJECT_SOURCE_DIR}
    BINARY_DIR ${nlsgen_folder}
    CMAKE_GENERATOR Ninja
    CMAKE_ARGS -DCMAKE_BUILD_TYPE=Release
    BUILD_COMMAND ${CMAKE_COMMAND} --build ${nlsgen_folder} --target nlsgen
    BUILD_ALWAYS ON
    BUILD_BYPRODUCTS ${nlsgen_command}
    INSTALL_COMMAND "")
  set(nlsgen_dependency velnls_build_machine ${nlsgen_command})
endif()
