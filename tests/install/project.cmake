# Configures, builds and runs a consumer project.
include(${CMAKE_CURRENT_LIST_DIR}/run.cmake)

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR}/${PROJECT} -B ${WORK} -G ${GENERATOR} -DCMAKE_BUILD_TYPE=Release
  -DCMAKE_C_COMPILER=${CC} -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_PREFIX_PATH=${PREFIX} -DSOURCE=${SOURCE})
run(${CMAKE_COMMAND} --build ${WORK})
foreach(program example c99 c99_static cxx20 cxx20_static)
  expect(${nihon} ${WORK}/${program} ${data_file})
endforeach()
