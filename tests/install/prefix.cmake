# Installs, moves the tree, and looks for every file that is promised.
include(${CMAKE_CURRENT_LIST_DIR}/run.cmake)

file(REMOVE_RECURSE ${PREFIX} ${PREFIX}.made)
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${PREFIX}.made)
file(RENAME ${PREFIX}.made ${PREFIX})

foreach(path
    include/velnls.h
    ${LIBDIR}/libvelnls.so ${LIBDIR}/libvelnls.so.1 ${LIBDIR}/libvelnls.so.1.0.0 ${LIBDIR}/libvelnls.a
    ${LIBDIR}/cmake/velnls/velnls-config.cmake ${LIBDIR}/pkgconfig/velnls.pc
    bin/velnls bin/nlsgen share/velnls/velnls.dat
    share/doc/velnls/examples/convert.c
    share/doc/velnls/examples/sort-exit/README.md share/doc/velnls/examples/sort-exit/usortwin.c)
  if(NOT EXISTS ${PREFIX}/${path})
    message(SEND_ERROR "not installed: ${path}")
  endif()
endforeach()
file(GLOB headers RELATIVE ${PREFIX}/include ${PREFIX}/include/*)
if(NOT headers STREQUAL "velnls.h")
  message(SEND_ERROR "headers: ${headers}")
endif()
