# The installed compiler, in its moved tree and without being told where its tables are, makes the installed data
# files again, byte for byte.
include(${CMAKE_CURRENT_LIST_DIR}/run.cmake)

file(MAKE_DIRECTORY ${WORK})
run(${PREFIX}/bin/nlsgen build --charmaps ${CHARMAPS} --unicode ${UNICODE} -o ${WORK})
foreach(name velnls.dat velnls-small.dat)
  run(${CMAKE_COMMAND} -E compare_files ${WORK}/${name} ${PREFIX}/share/velnls/${name})
endforeach()
