# Builds with the flags that pkg-config names, in both languages, and runs.
include(${CMAKE_CURRENT_LIST_DIR}/run.cmake)

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
set(ENV{PKG_CONFIG_PATH} ${PREFIX}/${LIBDIR}/pkgconfig)
run(${PKG_CONFIG} --cflags --libs velnls)
separate_arguments(flags UNIX_COMMAND "${run_output}")
expect(1.0.0 ${PKG_CONFIG} --modversion velnls)

set(strict -Wall -Wextra -pedantic -Werror)
set(here ${CMAKE_CURRENT_LIST_DIR})
set(rpath -Wl,-rpath,${PREFIX}/${LIBDIR})
run(${CC} -std=c99 ${strict} ${here}/consumer.c -o ${WORK}/c99 ${flags} ${rpath})
run(${CXX} -std=c++20 ${strict} ${here}/consumer.cpp -o ${WORK}/cxx20 ${flags} ${rpath})
expect(${nihon} ${WORK}/c99 ${data_file})
expect(${nihon} ${WORK}/cxx20 ${data_file})
