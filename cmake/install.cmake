# Lays down the library, its header, the CMake package and the pkg-config file. Everything that is installed
# finds its neighbours relative to itself, so the tree may be moved as a whole. The programs and the data file
# are installed where they are built.
include(CMakePackageConfigHelpers)

set(VELNLS_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/velnls)

install(TARGETS velnls velnls_static EXPORT velnls-targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${PROJECT_SOURCE_DIR}/include/velnls.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
