# The programs of a consumer project: each prints two kanji that it converted.
set(CMAKE_C_STANDARD 99)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
add_compile_options(-Wall -Wextra -pedantic -Werror)

function(consumer name source library)
  add_executable(${name} ${source})
  target_link_libraries(${name} PRIVATE ${library})
endfunction()

consumer(example ${SOURCE}/examples/convert.c velnls::velnls)
consumer(c99 ${CMAKE_CURRENT_LIST_DIR}/consumer.c velnls::velnls)
consumer(c99_static ${CMAKE_CURRENT_LIST_DIR}/consumer.c velnls::velnls_static)
consumer(cxx20 ${CMAKE_CURRENT_LIST_DIR}/consumer.cpp velnls::velnls)
consumer(cxx20_static ${CMAKE_CURRENT_LIST_DIR}/consumer.cpp velnls::velnls_static)
