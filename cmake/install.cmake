# Lays down the library, its header, the CMake package and the pkg-config file. Everything that is installed
# finds its neighbours relative to itself, so the tree may be moved as a whole. The programs and the data file
# are installed where they are built.
include(CMakePackageConfigHelpers)

if(VELNLS_INSTALL)
  install(TARGETS velnls velnls_static EXPORT velnls-targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(FILES ${PROJECT_SOURCE_DIR}/include/velnls.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

  # The sources of the examples alone: what someone built among them is not installed.
  set(velnls_examples_dir ${CMAKE_INSTALL_DATAROOTDIR}/doc/velnls/examples)
  install(FILES ${PROJECT_SOURCE_DIR}/examples/convert.c DESTINATION ${velnls_examples_dir})
  install(FILES ${PROJECT_SOURCE_DIR}/examples/sort-exit/README.md
    ${PROJECT_SOURCE_DIR}/examples/sort-exit/usortwin.c DESTINATION ${velnls_examples_dir}/sort-exit)

  # find_package(velnls) gives velnls::velnls and velnls::velnls_static.
  set(velnls_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/velnls)
  set(velnls_data_file ${CMAKE_INSTALL_DATADIR}/velnls/velnls.dat)
  configure_package_config_file(cmake/velnls-config.cmake.in ${PROJECT_BINARY_DIR}/cmake/velnls-config.cmake
    INSTALL_DESTINATION ${velnls_package_dir} PATH_VARS velnls_data_file)
  write_basic_package_version_file(${PROJECT_BINARY_DIR}/cmake/velnls-config-version.cmake
    VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
  install(FILES ${PROJECT_BINARY_DIR}/cmake/velnls-config.cmake
    ${PROJECT_BINARY_DIR}/cmake/velnls-config-version.cmake DESTINATION ${velnls_package_dir})
  install(EXPORT velnls-targets NAMESPACE velnls:: DESTINATION ${velnls_package_dir})

  # pkg-config: the prefix is written as the way back from the .pc file.
  file(RELATIVE_PATH velnls_prefix_from_pc /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
  string(REGEX REPLACE "/$" "" velnls_prefix_from_pc ${velnls_prefix_from_pc})
  configure_file(cmake/velnls.pc.in ${PROJECT_BINARY_DIR}/cmake/velnls.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/cmake/velnls.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endif()
